/**
 * The rows of the chain. They are made once and then brought up to date in place: a row never moves and never loses the focus.
 */
import { by_id, el, set_attribute, set_text } from "./dom.js";
import { field_of, value_of, value_text } from "./fields.js";
import { draw_gutter } from "./gutter.js";
import { show_fields } from "./meaning.js";
import { SHOWN } from "./series.js";
import { STAGES, behind } from "./stages.js";
import { clock, grouped, rated, span } from "./text.js";
import { add_plot, show_timeline } from "./timeline.js";

const WORDS = { working: "Working", degraded: "Degraded", stopped: "Stopped", no_input: "No input", idle: "Idle", unknown: "Unknown" };
const rows = new Map(); // by the id of the stage
let last_shown;

/** Makes the rows. */
export function make_chain() {
  for (const stage of STAGES) {
    const row = by_id("t-stage").content.cloneNode(true).firstElementChild, q = (selector) => row.querySelector(selector);
    row.id = `stage-${stage.id}`;
    row.dataset.lane = stage.lane;
    row.toggleAttribute("data-group", stage.id === "audio" || stage.id === "buffering");
    q(".state").id = `state-${stage.id}`;
    q(".words").id = `words-${stage.id}`;
    q(".more").id = `more-${stage.id}`;
    q("button").setAttribute("aria-controls", `more-${stage.id}`);
    q("button").setAttribute("aria-describedby", `state-${stage.id} words-${stage.id}`);
    by_id("stages").append(row);
    rows.set(stage.id, { stage, row });
    add_plot(row, stage);
  }
}

/* ---- The figures ---- */

const NONE = { n: "\u2013", u: "" };

function figure(now, what, stage) {
  if (what.gauge) {
    const value = value_of(now.components, what.gauge);
    if (value === null || value === undefined) return NONE;
    const number = (Number(value) * what.factor).toFixed(what.digits);
    return { n: what.signed && Number(number) > 0 ? `+${number}` : number.replace("-", "\u2212"), u: what.unit };
  }
  const sum = (names) => names.map((name) => now.series.rate_now(name)).filter((rate) => rate !== null).reduce((a, b) => (a ?? 0) + b, null);
  const plus = sum(what.plus);
  return plus === null ? NONE : { n: rated(Math.max(0, plus - (sum(what.minus) ?? 0))), u: stage.unit.rate };
}

function lost(now, stage) {
  const sum = (names) => names.map((name) => now.series.grown(name)).filter((n) => n !== null).reduce((a, b) => (a ?? 0) + b, null);
  const all = sum(stage.lost);
  if (all === null) return NONE;
  return { n: grouped(Math.max(0, all - (sum(stage.lost_less ?? []) ?? 0))), u: stage.unit.count };
}

function set_figure(dd, { n, u }, cls) {
  const [number, unit, spoken] = dd.children;
  set_text(number, n);
  number.classList.toggle("na", n === NONE.n);
  set_text(unit, u);
  set_text(spoken, n === NONE.n ? "not known" : "");
  set_attribute(dd, "class", cls);
}

/** The words of a row: what its worst finding says, or what the fields say. */
function words(now, stage, state, finding) {
  if (finding) return [finding.title, finding.detail ? `: ${finding.detail}` : ""];
  const exact = (name) => value_of(now.components, name);
  const v = (name) => (typeof exact(name) === "bigint" ? Number(exact(name)) : exact(name));
  const [brief, rest = ""] = stage.words(v, (name) => value_text(name, exact(name), now.taken));
  const cause = state !== "degraded" ? -1 : now.findings.findings.findIndex(({ explains }) => explains.some((id) => id.startsWith(`${stage.id}.`)));
  return [brief, cause < 0 ? rest : ` \u00b7 follows from finding ${cause + 1}${rest}`];
}

function show_row(now, { stage, row }, i, states) {
  const q = (selector) => row.querySelector(selector);
  const told = now.findings?.stages.find((s) => s.id === stage.id), state = states[i];
  const own = now.findings?.findings.filter((f) => f.stage === stage.id && f.severity !== "note") ?? [];
  const first = now.findings?.verdict.stage === stage.id && (state === "stopped" || state === "degraded");
  if (row.dataset.rail !== states.join()) draw_gutter(q(".gutter"), i, states);
  row.dataset.rail = states.join();
  row.dataset.state = state;
  row.toggleAttribute("data-first", first);
  set_text(q(".name span"), told?.title ?? stage.id);
  set_text(q(".state b"), !now.stale ? WORDS[state] : state === "no_input" ? "had no input" : `was ${WORDS[state].toLowerCase()}`);
  const since = (state === "stopped" && own[0]?.since_time) || (["stopped", "no_input"].includes(state) && told?.last_good_time);
  set_text(q(".since"), since && !now.stale && now.taken - since >= 1 ? span(now.taken - since, 2) : "");
  for (const tag of row.querySelectorAll(".first")) tag.hidden = !first;
  show_references(q(".refs"), now, stage);
  const [brief, rest] = words(now, stage, state, ["stopped", "degraded"].includes(state) ? own[0] : undefined);
  set_text(q(".brief"), brief);
  set_text(q(".rest"), rest);
  set_attribute(q(".words"), "title", brief + rest);
  const out = state === "idle" ? NONE : figure(now, stage.out, stage), dd = row.querySelectorAll(".cells dd"), dt = row.querySelectorAll(".cells dt");
  set_text(q(".main"), out === NONE ? "" : `${out.n} ${out.u}`);
  const gone = lost(now, stage);
  const bad = state === "stopped" ? "bad" : "";
  set_figure(dd[0], state === "idle" ? NONE : figure(now, stage.in, stage), "");
  set_figure(dd[1], out, bad);
  set_figure(dd[2], state === "idle" ? NONE : gone, gone.n === "0" || gone === NONE ? "" : bad || "some");
  const good = told?.last_good_time;
  set_figure(dd[3], good ? { n: now.stale ? clock(good) : `${span(now.taken - good, 2)} ago`, u: "" } : NONE, good ? bad : "");
  set_text(dt[3], now.stale ? "Last good at" : "Last good");
  if (row.hasAttribute("data-open")) show_more(now, stage, q(".more"));
}

/** Links to the findings of a stage, by their numbers. */
function show_references(list, now, stage) {
  const numbers = now.findings?.findings.map((f, i) => [f.stage, i + 1]).filter(([at]) => at === stage.id).map(([, n]) => n) ?? [];
  if (list.textContent === numbers.join("")) return;
  list.replaceChildren(...numbers.map((n) => el("a", { class: "ref", href: `#finding-${n}`, "aria-label": `Finding ${n}` }, String(n))));
}

function show_more(now, stage, more) {
  if (!more.children.length)
    more.append(el("h4", {}, "Behind the figures of this row, since the start"), el("dl", { class: "fields rates" }),
      el("h4", {}, "Fields"), el("dl", { class: "fields" }));
  const there = (name) => field_of(name) && value_of(now.components, name) !== undefined;
  const counted = [["In", behind(stage.in)], ["Out", behind(stage.out)], ["Lost", stage.lost]];
  const [rates, fields] = more.querySelectorAll("dl");
  show_fields(rates, counted.flatMap(([what, names]) => names.filter(there).map((name) => ({ what, name }))), now);
  show_fields(fields, stage.fields.filter(there).map((name) => ({ name })), now);
}

/** Brings the chain up to date with what is known now. */
export function show_chain(now) {
  const states = STAGES.map((stage) => now.findings?.stages.find((s) => s.id === stage.id)?.state ?? "unknown");
  last_shown = now;
  [...rows.values()].forEach((row, i) => show_row(now, row, i, states));
  const known = now.series.known();
  set_text(by_id("h-lost"), known > SHOWN - 30 || !known ? "10 min" : span(known, 1));
  set_text(by_id("h-last"), now.stale ? "Last good at" : "Last good");
  show_timeline(now);
}

/* ---- What people do ---- */

function set_open(row, yes) {
  row.toggleAttribute("data-open", yes);
  row.querySelector("button").setAttribute("aria-expanded", String(yes));
  row.querySelector(".more").hidden = !yes;
  if (yes && last_shown) show_more(last_shown, rows.get(row.id.slice("stage-".length)).stage, row.querySelector(".more"));
}

/** Lets people open rows and walk through them. */
export function listen_to_chain() {
  const stages = by_id("stages");
  stages.addEventListener("click", (event) => {
    const button = event.target.closest(".name button");
    if (button) set_open(button.closest(".stage"), button.getAttribute("aria-expanded") === "false");
  });
  stages.addEventListener("keydown", (event) => {
    const buttons = [...stages.querySelectorAll(".name button")], i = buttons.indexOf(event.target);
    const to = { ArrowDown: i + 1, ArrowUp: i - 1, Home: 0, End: buttons.length - 1 }[event.key];
    if (i < 0 || to === undefined || !buttons[to]) return;
    event.preventDefault();
    buttons[to].focus();
  });
  by_id("plots").addEventListener("click", ({ currentTarget }) => {
    const on = currentTarget.getAttribute("aria-pressed") === "false";
    currentTarget.setAttribute("aria-pressed", String(on));
    for (const { row } of rows.values()) set_open(row, on);
  });
}
