// From a node of the tree to the control that draws it.
import type { TreeNode } from "../protocol.ts";
import { GridControl } from "../grid/control.ts";
import { ProgressView, TrackView } from "./bars.ts";
import { ButtonView, LabelView, LookupButtonView, MenuItemView, MenuView } from "./button.ts";
import { ChartView } from "./chart.ts";
import { CheckView, ComboView, ListView, RadioView } from "./choice.ts";
import { PagesView, PageView, PanelView } from "./container.ts";
import type { ControlView, ScreenContext } from "./control.ts";
import { TextView } from "./text.ts";

type Maker = new (screen: ScreenContext, node: TreeNode) => ControlView;

const kMakers: Record<string, Maker> = {
  edit: TextView,
  money: TextView,
  date: TextView,
  combo: ComboView,
  list: ListView,
  radio: RadioView,
  check: CheckView,
  button: ButtonView,
  smallButton: ButtonView,
  lookup: LookupButtonView,
  label: LabelView,
  menu: MenuView,
  menuItem: MenuItemView,
  panel: PanelView,
  group: PanelView,
  pages: PagesView,
  page: PageView,
  track: TrackView,
  progress: ProgressView,
  grid: GridControl,
  chart: ChartView,
};

// A kind that isn't known is shown as its caption.
export function makeControl(screen: ScreenContext, node: TreeNode): ControlView {
  return new (kMakers[node.kind] ?? LabelView)(screen, node);
}
