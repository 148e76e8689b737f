// From the rows of a screen's tree to rows of fields: what belongs together stands together, and fields are as
// wide as what they hold.
import type { TreeNode } from "./protocol.ts";

// The widths of fields are steps of this lattice, so that fields of different rows stand under one another.
const kStep = 56;
const kGap = 8;
const kCharacter = 7.7;
const kPadding = 18;
const kLookup = 30;

// Of the twelve columns of a form one has this width, with the gap beside it.
const kFormColumn = 80;

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

// How a control without a width of its own is thought to be wide.
function thought(node: TreeNode): number {
  if (node.kind === "radio") {
    const items = Array.isArray(node["items"]) ? (node["items"] as string[]) : [];
    return items.reduce((sum, item) => sum + item.length * 7.4 + 38, 12);
  }
  if (node.kind === "check" || kActions.has(node.kind)) return caption(node).length * 7.4 + 40;
  return 12 * kFormColumn;
}

// How many of a form's twelve columns each unit takes. What has descriptions shares what the others leave.
export function spans(row: Unit[]): number[] {
  const given = row.map((unit) => {
    const span = unit.nodes[0]!["span"];
    return typeof span === "number" ? span : 0;
  });
  const asked = row.map((unit, at) =>
    given[at]! > 0 ? given[at]! : Math.min(12, Math.max(2, Math.ceil(((unit.width > 0 ? unit.width : thought(unit.nodes[0]!)) + 4) / kFormColumn))),
  );
  let free = 12 - asked.reduce((sum, span) => sum + span, 0);
  const growing = row.map((_, at) => at).filter((at) => row[at]!.grows && given[at] === 0);
  growing.forEach((at, index) => {
    if (free <= 0) return;
    const share = Math.ceil(free / (growing.length - index));
    asked[at]! += share;
    free -= share;
  });
  return asked;
}

const kParts = new Set(["bar", "more", "picture", "form", "sides", "sums", "actions"]);

// A part of the screen between it and its controls.
export function isPart(node: TreeNode): boolean {
  return kParts.has(node.kind) && node.name === "";
}

export function roleOf(node: TreeNode): string {
  return typeof node["role"] === "string" ? node["role"] : "";
}

// What is better for every pixel of height: lists of rows and what holds them.
export function isTall(node: TreeNode): boolean {
  if (node.kind === "grid" || node.kind === "chart") return true;
  // Folded away until it is asked for.
  if (node.kind === "picture") return false;
  return (node.layout ?? []).some((row) => row.some(isTall));
}

function isGrowing(node: TreeNode): boolean {
  if (["grid", "chart", "pages", "page", "progress"].includes(node.kind)) return true;
  return node.layout !== undefined && (isTall(node) || node.kind === "panel" || isPart(node));
}

const kActions = new Set(["button", "smallButton", "menu", "lookup"]);

// A row of nothing but buttons, also inside panels.
export function isActions(row: TreeNode[]): boolean {
  return row.every((node) => {
    if (node.kind === "actions") return true;
    if (node.kind === "panel") return (node.layout ?? []).every(isActions);
    return kActions.has(node.kind);
  });
}
