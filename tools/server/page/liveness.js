/**
 * Whether what is shown is live. Data that is not live never looks live: everything grey, a band with NOT LIVE, moments instead of ages.
 * Should the script itself die, the style sheet does this alone, unless each update winds its animations back.
 */
import { by_id, set_attribute, set_sign, set_text } from "./dom.js";
import { span, when } from "./text.js";

const LATE = 2.5; // two updates missed [s]
const GONE = 5;   // five updates missed [s]
const LIVE_STATES = ["live", "starting"];
const ENDED_STATES = ["stale", "closed", "missing"];

const LOOK = "Look at the picture itself, then check";
const SERVER_AWAY = "The decoder may be fine: look at the picture itself, then check the network of this device, and the server.";
const HOST_AWAY = "The server answers; the host process of the decoder does not. The output may be gone too. " +
  `${LOOK} power and host process of the unit.`;
const HOST_HANGS = `Its host process is there, but does not update its records any more. ${LOOK} what the log of the process says last.`;
const LAST_KNOWN = "Everything below is of the last moment that is known.";

/**
 * Judges from the server's side how fresh the data is: whether its answers come, and what it says about the decoder. How often the host
 * updates its records is for the server to judge.
 * @param silence since the last answers were asked for, @param age of the data [s]; Infinity if there are none yet
 * @param state what the server says about the decoder; undefined as long as it has said nothing
 * @param failure that of the last try, or undefined
 * @return { word: live, late or gone, what, why }
 */
export function judge(silence, age, state, failure) {
  const gone = (what, why) => ({ word: "gone", what, why }), since = Number.isFinite(silence) ? ` for ${span(silence)}` : "";
  const is_missing = failure?.status === 404;
  if (!is_missing && silence >= GONE && (failure || state !== undefined)) {
    if (failure?.status) return gone(`The server answers with an error${since}. ${failure.message}.`, `${LOOK} the server.`);
    return gone(`No answer from the server${since}.`, SERVER_AWAY);
  }
  if (is_missing || ENDED_STATES.includes(state)) return gone(`The decoder stopped publishing ${span(age)} ago.`, HOST_AWAY);
  if (state === "hung") return gone(`The decoder hangs: no sign of life for ${span(age)}.`, HOST_HANGS);
  if (state === "captured") return gone("These are records out of a capture file.", LAST_KNOWN); // which may grow
  if (state !== undefined && !LIVE_STATES.includes(state)) return gone(`The decoder cannot be read: ${state}.`, LAST_KNOWN);
  return { word: silence >= LATE ? "late" : "live", what: "", why: "" };
}

/** Shows how fresh the data is. @param taken the moment of the data [epoch s], or null */
export function show_liveness(liveness, age, taken, retry) {
  const { word } = liveness, held = word === "held", stale = held || word === "gone";
  set_attribute(document.documentElement, "data-live", word);
  const box = by_id("fresh"), known = Number.isFinite(age);
  set_sign(box, { live: "working", late: "degraded", gone: "notlive", held: "hold" }[word]);
  set_text(box.querySelector("b"), { live: "Live", late: known ? "Late" : "Waiting", gone: "Not live", held: "Held" }[word]);
  const old = { held: () => `at ${when(taken)}`, gone: () => `${span(age)} old` }[word] ?? (() => `${age.toFixed(1)}s old`);
  set_text(box.querySelector("span"), known ? old() : "no data yet");
  by_id("notlive").hidden = !stale;
  by_id("hold").hidden = word === "gone";
  if (!stale) return;
  const last = known ? ` Last data ${when(taken)} UTC.` : "";
  set_text(by_id("notlive-head"), held ? "HELD" : "NOT LIVE");
  set_text(by_id("notlive-what"), held ? `You stopped this page at ${when(taken)} UTC.` : liveness.what + last);
  const tries = `This page tries again ${retry > 1.5 ? `in ${Math.round(retry)}s` : "every second"}.`;
  set_text(by_id("notlive-why"), held ? "Everything below is of that moment. Press Resume to go on." : `${liveness.why} ${tries}`);
}

/** Winds the fail-safe of the style sheet back. Called when an update has been shown, and only then. */
export function rewind() {
  for (const animation of document.getAnimations()) if (["expire", "vanish", "grey"].includes(animation.animationName)) animation.currentTime = 0;
}
