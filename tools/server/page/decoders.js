/**
 * The list of decoders, for a unit that has more than one: each with its state and the verdict about it.
 */
import { by_id, el, keep_list, set_attribute, set_sign, set_text, sign } from "./dom.js";
import { Poll } from "./server.js";
import { clock, day, moment } from "./text.js";

const MOST_JUDGED = 16; // decoders whose verdicts are asked for

const verdicts = new Map(); // by name: { poll, verdict }

function make_row({ decoder }) {
  const link = el("a", { href: `?decoder=${encodeURIComponent(decoder)}` }, decoder);
  const part = (name, ...children) => el("p", { class: `d-${name}` }, ...children);
  return el("li", {}, sign("unknown"), part("name", link), part("verdict"), part("state"), part("since"));
}

function show_row(row, { decoder, state, instance, problem }) {
  const live = state === "live", verdict = live && verdicts.get(decoder)?.verdict;
  row.dataset.state = live ? verdict?.state ?? "unknown" : "idle";
  set_sign(row, live ? row.dataset.state : "notlive");
  set_text(row.querySelector(".d-verdict"), live ? verdict?.headline ?? "" : `Not live${problem ? `: ${problem}` : ""}`);
  set_text(row.querySelector(".d-state"), live ? "Live" : state);
  const started = instance && moment(instance.started_at);
  set_text(row.querySelector(".d-since"), started ? `since ${day(started)} ${clock(started)} UTC` : "");
  set_attribute(row, "class", live ? "" : "away");
}

/** Asks for the verdicts about what is listed, and no longer for those about what is gone. */
function judge(decoders) {
  const names = decoders.filter(({ state }) => state === "live").slice(0, MOST_JUDGED).map(({ decoder }) => decoder);
  for (const [name, { poll }] of verdicts)
    if (!names.includes(name)) {
      poll.stop();
      verdicts.delete(name);
    }
  for (const name of names) {
    if (verdicts.has(name)) continue;
    const entry = {}, path = `api/v1/decoders/${encodeURIComponent(name)}/findings`;
    verdicts.set(name, entry);
    const set = (findings) => (entry.verdict = findings?.verdict);
    entry.poll = new Poll(() => path, 2000, set, () => set());
  }
}

/** Brings the list up to date. */
export function show_decoders({ decoders }) {
  by_id("list").hidden = false;
  judge(decoders);
  by_id("no-decoders").hidden = decoders.length > 0;
  keep_list(by_id("decoders"), decoders, ({ decoder }) => decoder, make_row, show_row);
}
