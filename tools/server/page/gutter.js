/**
 * The rails beside the rows: the main one from the network to the output, the branch of audio and metadata, and the bracket of the
 * buffering. A rail is solid where data flows, and dotted behind the first stage that passes nothing on.
 */
import { svg } from "./dom.js";
import { STAGES } from "./stages.js";

const X = { main: 10, branch: 25, across: 39 }, MID = 15;

/** Draws the part of one row. @param states those of all stages */
export function draw_gutter(g, i, states) {
  const passes = (k) => ["working", "degraded", "unknown"].includes(states[k]);
  const { lane } = STAGES[i], last = STAGES.length - 1, transport = passes(2);
  g.replaceChildren();
  const line = (cls, x1, y1, x2, y2) => g.append(svg("line", { class: cls, x1, y1, x2, y2 }));
  const rail = (wet, thin) => `rail${thin ? " thin" : ""}${wet ? "" : " dry"}`;
  // The clock is read off the stream beside its way: it holds nothing up.
  const before = i === 4 ? 2 : i - 1;
  if (lane === "main") {
    if (i) line(rail(passes(before)), X.main, 0, X.main, MID);
    if (STAGES[i + 1].lane === "main") line(rail(passes(i === 3 ? 2 : i)), X.main, MID, X.main, "100%");
  }
  if (i === 2) line(transport ? "rail thin" : "rail stub", X.main, MID, X.branch, MID);
  if (i >= 2 && lane !== "across") line(rail(transport, true), X.branch, i === 2 ? MID : i === 7 ? -9 : 0, X.branch, i === 8 ? MID : "100%");
  if (i === 2) line("rail across", X.across - 4, MID + 9, X.across, MID + 9);
  if (i >= 2) line("rail across", X.across, i === 2 ? MID + 9 : i === 7 || i === last ? -9 : 0, X.across, i === last ? MID : "100%");
  g.append(svg("circle", { class: "halo", cx: X[lane], cy: MID, r: states[i] === "working" ? 7 : 10 }),
    svg("use", { href: `#sign-${states[i]}`, x: X[lane] - 8, y: MID - 8, width: 16, height: 16 }));
}
