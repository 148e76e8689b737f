// From the rows of a screen's tree to rows of fields: what belongs together stands together, and fields are as
// wide as what they hold.
import type { TreeNode } from "./protocol.ts";

// The widths of fields are steps of this lattice, so that fields of different rows stand under one another.
const kStep = 56;
const kGap = 8;
const kCharacter = 7.7;
const kPadding = 18;
const kLookup = 30;

export interface Unit {
  // A field with its lookup and its descriptions, or a single control of another kind.
  nodes: TreeNode[];
  // In pixels; 0 for what the content asks.
  width: number;
  // Takes what is left of the row.
  grows: boolean;
}

const kInputs = new Set(["edit", "money", "date", "combo"]);

function has(node: TreeNode, property: string): boolean {
  const value = node[property];
  return value !== undefined && value !== "" && value !== false;
}

export function isDescription(node: TreeNode): boolean {
  return node.kind === "edit" && has(node, "readOnly") && !has(node, "caption");
}

// How many characters a field is made for.
function characters(node: TreeNode): number {
  const longest = typeof node["maxLength"] === "number" ? node["maxLength"] : 0;
  switch (node.kind) {
    case "date":
      return 10;
    case "money":
      return 15;
    case "combo": {
      const items = Array.isArray(node["items"]) ? (node["items"] as string[]) : [];
      return Math.min(Math.max(3, ...items.map((item) => item.length)), 40) + 3;
    }
    default:
      return longest > 0 ? Math.min(Math.max(longest, 4), 60) : has(node, "readOnly") ? 12 : 24;
  }
}

export function lattice(pixels: number): number {
  return Math.ceil((pixels + kGap) / (kStep + kGap)) * (kStep + kGap) - kGap;
}

function caption(node: TreeNode): string {
  return typeof node["caption"] === "string" ? node["caption"].replace("&", "") : "";
}

// The units of a row.
export function units(row: TreeNode[]): Unit[] {
  const result: Unit[] = [];
  for (let at = 0; at < row.length; ++at) {
    const node = row[at]!;
    if (!kInputs.has(node.kind)) {
      result.push({ nodes: [node], width: 0, grows: isGrowing(node) });
      continue;
    }
    const unit: Unit = { nodes: [node], width: 0, grows: false };
    let pixels = characters(node) * kCharacter + kPadding;
    if (row[at + 1]?.kind === "lookup") {
      unit.nodes.push(row[++at]!);
      pixels += kLookup;
    }
    unit.width = lattice(Math.max(pixels, caption(node).length * 6.9 + 4));
    while (at + 1 < row.length && isDescription(row[at + 1]!)) {
      unit.nodes.push(row[++at]!);
      unit.grows = true;
    }
    result.push(unit);
  }
  return result;
}

// What is better for every pixel of height: lists of rows and what holds them.
export function isTall(node: TreeNode): boolean {
  if (node.kind === "grid" || node.kind === "chart") return true;
  return (node.layout ?? []).some((row) => row.some(isTall));
}

export function isGrowing(node: TreeNode): boolean {
  if (["grid", "chart", "pages", "page", "progress"].includes(node.kind)) return true;
  return node.layout !== undefined && (isTall(node) || node.kind === "panel");
}

const kActions = new Set(["button", "smallButton", "menu", "lookup"]);

// A row of nothing but buttons, also inside panels.
export function isActions(row: TreeNode[]): boolean {
  return row.every((node) => {
    if (node.kind === "panel") return (node.layout ?? []).every(isActions);
    return kActions.has(node.kind);
  });
}
