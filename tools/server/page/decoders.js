/**
 * The list of decoders, for a unit that has more than one: each with its state and the verdict about it.
 */
import { by_id, el, keep_list, set_attribute, set_sign, set_text, sign } from "./dom.js";
import { clock, day, moment } from "./text.js";

const WORST_FIRST = ["stopped", "away", "degraded", "unknown", "no_input", "working", "idle", "captured"];

/** What a row is sorted by: the state of the verdict, or that there is none of now. */
const state_of = ({ state, verdict }) => (state === "live" ? verdict?.state ?? "unknown" : state === "captured" ? state : "away");

function make_row({ decoder }) {
  const link = el("a", { href: `?decoder=${encodeURIComponent(decoder)}` }, decoder);
  const part = (name, ...children) => el("p", { class: `d-${name}` }, ...children);
  return el("li", {}, sign("unknown"), part("name", link), part("verdict"), part("state"), part("since"));
}

function show_row(row, { state, verdict, instance, problem }) {
  const live = state === "live";
  row.dataset.state = live ? verdict?.state ?? "unknown" : "idle";
  set_sign(row, live ? row.dataset.state : "notlive");
  set_text(row.querySelector(".d-verdict"), live ? verdict?.headline ?? "" : `Not live${problem ? `: ${problem}` : ""}`);
  set_text(row.querySelector(".d-state"), live ? "Live" : state);
  const started = instance && moment(instance.started_at);
  set_text(row.querySelector(".d-since"), started ? `host started ${day(started)} ${clock(started)} UTC` : "");
  set_attribute(row, "class", live ? "" : "away");
}

/** Brings the list up to date: the worst first, and by name. @param unknown the name of a decoder that was asked for and is not there */
export function show_decoders({ decoders }, unknown) {
  const rank = (one) => WORST_FIRST.indexOf(state_of(one)), focused = document.activeElement;
  by_id("unknown").hidden = !unknown;
  if (unknown) set_text(by_id("unknown"), `There is no decoder ${unknown} here; if it comes, it is shown. ${decoders.length ? "These are here:" : ""}`);
  by_id("no-decoders").hidden = decoders.length > 0;
  const sorted = [...decoders].sort((a, b) => rank(a) - rank(b) || (a.decoder < b.decoder ? -1 : 1));
  keep_list(by_id("decoders"), sorted, ({ decoder }) => decoder, make_row, show_row);
  if (focused !== document.activeElement && focused.isConnected) focused.focus({ preventScroll: true }); // it has moved
}
