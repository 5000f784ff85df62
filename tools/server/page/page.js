/**
 * The page of a decoder: a snapshot and the findings once a second, shown in place; or the list of decoders if there are several.
 */
import { listen_to_fields, show_all_fields } from "./all_fields.js";
import { listen_to_chain, make_chain, show_chain } from "./chain.js";
import { show_decoders } from "./decoders.js";
import { by_id, set_text } from "./dom.js";
import { learn, value_of } from "./fields.js";
import { brief_of, key_of, show_findings, show_verdict } from "./findings.js";
import { judge, rewind, show_liveness } from "./liveness.js";
import { listen_to_labels, show_meaning } from "./meaning.js";
import { complete } from "./past.js";
import { listen_to_report } from "./report.js";
import { Series } from "./series.js";
import { Poll, ask } from "./server.js";
import { SAMPLED } from "./stages.js";
import { clock, day, moment, span } from "./text.js";
import { listen_to_timeline } from "./timeline.js";

const EVERY = 1000; // from one snapshot to the next [ms]

const series = new Series(SAMPLED);
const polls = [];
const answers = {};  // by resource: { answer, asked }
const failures = {}; // by resource: that of the last try
let name = new URLSearchParams(location.search).get("decoder");
let liveness = { word: "late", what: "", why: "" };
let is_unknown = false; // there is no decoder of the name
let held, announced;

const path = () => `api/v1/decoders/${encodeURIComponent(name)}`;
const needed = () => (is_listing() ? ["list"] : ["snapshot", "findings"]);
const is_listing = () => name === null || is_unknown;

/* ---- What is known ---- */

/** How old what is shown is: what the answers are, and what the records were when the server looked [s]. */
function age() {
  const { snapshot } = answers, behind = snapshot ? moment(snapshot.answer.now) - moment(snapshot.answer.taken_at) : 0;
  return silence() + Math.max(0, behind);
}

/** How long ago the older of the answers was asked for [s]. */
const silence = () => Math.max(...needed().map((what) => (answers[what] ? (performance.now() - answers[what].asked) / 1000 : Infinity)));

/** What everything on the page is shown from. */
function known() {
  const { snapshot, findings } = held ?? answers, taken = moment((snapshot?.answer ?? { taken_at: 0 }).taken_at);
  const edge = liveness.word === "gone" && snapshot?.answer.state !== "captured" ? taken + age() : taken;
  return {
    components: snapshot?.answer.components ?? {}, instance: snapshot?.answer.instance, taken, // the moment that ages count to
    findings: findings?.answer, series, edge, // the moment at the right of the plots
    stale: liveness.word === "gone" || liveness.word === "held",
  };
}

/* ---- Showing it ---- */

function show_header(now) {
  set_text(by_id("decoder"), name);
  if (!now.instance) return;
  const started = moment(now.instance.started_at), uptime = Number(value_of(now.components, "tdemux.uptime") ?? 0);
  set_text(by_id("instance"), now.instance.id.slice(0, 8));
  by_id("instance").title = now.instance.id;
  set_text(by_id("up"), uptime ? span(uptime) : "\u2013");
  set_text(by_id("started"), `${day(started)} ${clock(started)} UTC`);
}

function announce(now) {
  const key = `${liveness.word === "late" ? "live" : liveness.word} ${now.findings ? key_of(now.findings) : ""}`;
  if (key === announced) return;
  announced = key;
  set_text(by_id("announce"), now.stale ? (held ? "Held." : `Not live. ${liveness.what}`) : now.findings ? `${now.findings.verdict.headline}.` : "");
}

function show() {
  document.body.dataset.view = is_listing() ? "list" : "decoder";
  by_id("list").hidden = !is_listing();
  if (is_listing()) {
    set_text(by_id("decoder"), "Decoders");
    document.title = liveness.word === "gone" ? "NOT LIVE \u00b7 decoders" : is_unknown ? `No decoder ${name}` : "Decoders";
    if (answers.list) show_decoders(answers.list.answer, name);
    return;
  }
  const now = known();
  document.title = `${now.stale ? (held ? "HELD" : "NOT LIVE") : now.findings ? brief_of(now.findings) : "\u2026"} \u00b7 ${name}`;
  show_header(now);
  show_verdict(now);
  announce(now);
  if (!answers.snapshot) return;
  show_chain(now);
  show_findings(now);
  show_all_fields(now);
  show_meaning(now);
}

/** Judges anew whether the page is live, and shows all that depends on it. */
function tick() {
  const old = age(), is_told = needed().every((what) => answers[what]);
  const state = is_told ? answers.snapshot?.answer.state ?? "live" : undefined;
  const failure = needed().map((what) => failures[what]).find(Boolean);
  const before = liveness.word;
  liveness = held ? { word: "held" } : judge(silence(), old, state, failure);
  const retry = Math.max(0, ...polls.map((poll) => (poll.next - performance.now()) / 1000));
  const taken = moment((held ?? answers).snapshot?.answer.taken_at ?? answers.list?.answer.taken_at ?? 0);
  show_liveness(liveness, held ? 0 : old, taken, retry);
  if (liveness.word !== before || liveness.word === "gone") show();
}

/* ---- Asking ---- */

function took(what, answer, asked) {
  answers[what] = { answer, asked };
  delete failures[what];
  if (what === "snapshot") is_unknown = false;
  if (held) return;
  if (what === "snapshot") sample(answer);
  tick();
  show();
  rewind();
}

/** A sample for the plots. */
function sample(snapshot) {
  const taken = moment(snapshot.taken_at);
  complete(series, path(), taken, () => held || show());
  series.append(taken, snapshot.instance?.id, (field) => numeric(value_of(snapshot.components, field)));
}

const numeric = (value) => (typeof value === "number" || typeof value === "bigint" ? value : null);

function failed(what, failure) {
  // A decoder that is there may have nothing to judge yet; whether it is there, the snapshot tells.
  if (what === "findings" && failure.status === 404) answers.findings = { asked: performance.now() };
  else failures[what] = failure;
  if (what === "snapshot" && failure.status === 404 && !answers.snapshot && !is_unknown) {
    is_unknown = true;
    poll("list", () => "api/v1/decoders");
  }
  tick();
}

function poll(what, path_of) {
  polls.push(new Poll(path_of, EVERY, (answer, asked) => took(what, answer, asked), (failure) => failed(what, failure)));
}

/** The server tells which decoders there are; one alone is shown at once. */
async function begin() {
  try {
    const [list, fields] = await Promise.all([ask("api/v1/decoders"), ask("api/v1/fields")]);
    learn(fields);
    if (name === null && list.decoders.length === 1) name = list.decoders[0].decoder;
    by_id("all").hidden = name === null || list.decoders.length < 2;
    document.body.dataset.view = is_listing() ? "list" : "decoder";
    if (name === null) return poll("list", () => "api/v1/decoders");
    listen_to_report(path(), () => held !== undefined);
    poll("snapshot", path);
    poll("findings", () => `${path()}/findings`);
  } catch (failure) {
    failures[needed()[0]] = failure;
    tick();
    setTimeout(begin, 2 * EVERY);
  }
}

/* ---- What people do ---- */

by_id("hold").addEventListener("click", ({ currentTarget }) => {
  held = held ? undefined : { ...answers };
  set_text(currentTarget, held ? "Resume" : "Hold");
  currentTarget.setAttribute("aria-pressed", String(held !== undefined));
  tick();
  show();
});
const hurry = () => document.visibilityState === "visible" && polls.forEach((each) => each.hurry());
addEventListener("online", hurry);
document.addEventListener("visibilitychange", hurry);

make_chain();
listen_to_chain();
listen_to_timeline();
listen_to_labels();
listen_to_fields();
setInterval(tick, 250);
begin();
