/**
 * What the diagnosis says: the verdict, the findings with their evidence and what to do now, and those that are over.
 */
import { by_id, el, keep_list, set_attribute, set_sign, set_text } from "./dom.js";
import { label_of } from "./fields.js";
import { show_fields } from "./meaning.js";
import { clock, day, grouped, moment, rated, span, when } from "./text.js";

const SEVERITIES = { critical: ["Critical", "stopped"], warning: ["Warning", "degraded"], note: ["Note", "note"] };

const title_of = (findings, id) => findings.stages.find((stage) => stage.id === id)?.title ?? "Host process";

function link_to(findings, id) {
  return findings.stages.some((stage) => stage.id === id) ? el("a", { href: `#stage-${id}` }, title_of(findings, id)) : title_of(findings, id);
}

/** The verdict in a few words, for the title of the tab. */
export function brief_of(findings) {
  const { state, stage, headline } = findings.verdict, word = { stopped: "Stopped", degraded: "Degraded" }[state];
  return stage && word ? `${word} at ${title_of(findings, stage)}` : headline;
}

/** What has to change so that assistive technology is told anew: not the seconds in the headline. */
export const key_of = (findings) => [findings.verdict.state, findings.verdict.stage, findings.findings[0]?.id].join();

/** Brings the verdict up to date. */
export function show_verdict(now) {
  const { findings } = now, box = by_id("verdict");
  const verdict = findings?.verdict ?? { state: "unknown", headline: "Waiting for the first data", place: "" };
  box.dataset.state = verdict.state;
  set_sign(box, verdict.state);
  set_text(by_id("headline"), verdict.headline);
  by_id("kicker").hidden = !now.stale || !findings;
  set_text(by_id("kicker"), `Last known, ${when(now.taken)} UTC`);
  const first = ["stopped", "degraded"].includes(verdict.state) && findings.stages.some(({ id }) => id === verdict.stage);
  by_id("first").hidden = !first;
  const link = by_id("first-link");
  set_text(link, first ? title_of(findings, verdict.stage) : "");
  set_attribute(link, "href", `#stage-${verdict.stage}`);
  set_text(by_id("place"), place_text(verdict, first && title_of(findings, verdict.stage)));
  by_id("action").hidden = !verdict.action || now.stale;
  set_text(by_id("action-text"), verdict.action ?? "");
  const count = (severity) => findings?.findings.filter((finding) => finding.severity === severity).length ?? 0;
  const counts = [[count("critical"), "critical", "critical"], [count("warning"), "warning", "warnings"], [count("note"), "note", "notes"]]
    .filter(([n]) => n).map(([n, one, many]) => `${n} ${n > 1 ? many : one}`).join(", ");
  by_id("counts-link").hidden = !counts;
  set_text(by_id("counts-link"), counts);
  set_text(by_id("counts-none"), counts || verdict.state !== "working" ? "" : "No findings");
}

/** The place in the verdict begins with the stage, which stands as a link before it. */
function place_text(verdict, title) {
  const place = verdict.place ?? "";
  if (!title || !place.startsWith(title)) return place;
  const rest = place.slice(title.length).replace(/^[:.,\s]+/, "");
  return rest && `${rest[0].toUpperCase()}${rest.slice(1)}`;
}

function make_finding() {
  const row = by_id("t-finding").content.cloneNode(true).firstElementChild;
  row.tabIndex = -1;
  return row;
}

function growth_text(grown, rate, window) {
  if (grown === 0) return " \u00b7 stands still";
  return ` \u00b7 ${grouped(grown)} in ${span(Math.round(window))}${rate ? `, ${rated(rate)}/s` : ""}`;
}

function evidence_of(finding, window) {
  return finding.evidence.map(({ field, value, value_s, grown, rate }) => (
    { name: field, value: value_s ? BigInt(value_s) : value, extra: grown === undefined ? undefined : growth_text(grown, rate, window) }));
}

function show_finding(row, finding, index, now) {
  const q = (selector) => row.querySelector(selector), [word, state] = SEVERITIES[finding.severity];
  row.id = `finding-${index + 1}`;
  row.dataset.state = state;
  set_sign(row, state);
  set_text(q(".f-meta b"), `${index + 1} ${word}`);
  const place = q(".f-stage"), title = title_of(now.findings, finding.stage);
  if (place.textContent !== title) place.replaceChildren(link_to(now.findings, finding.stage));
  const since = finding.since_time;
  set_text(q(".f-since"), !since ? "" : now.stale ? ` \u00b7 since ${when(since)}` : ` \u00b7 for ${span(now.taken - since)}`);
  set_text(q("h3"), finding.title + (finding.detail ? `: ${finding.detail}` : ""));
  const explained = finding.explains.map((id) => `${title_of(now.findings, id.split(".")[0])} (${id.split(".")[1].replaceAll("-", " ")})`);
  set_text(q(".f-explains"), explained.length ? `Explains too: ${explained.join(", ")}` : "");
  set_text(q(".code"), finding.id);
  show_fields(q(".fields"), evidence_of(finding, now.findings.window ?? 0), now);
  set_text(q(".f-do h4"), now.stale ? "To do then" : "Do now");
  set_text(q(".f-do p"), finding.action);
}

/** Why there is nothing to list. */
function nothing_text({ verdict, unseen }) {
  const fields = [...new Set(unseen.map(({ field }) => label_of(field)))];
  const blind = unseen.length ? ` Not seen, as this decoder does not measure it: ${fields.join(", ")}.` : "";
  switch (verdict.state) {
  case "working": return `None. Every stage passes on what it gets.${blind}`;
  case "idle": return "None. There is nothing to judge until a stream is started.";
  case "no_input": return "None. There is nothing to judge until a sender is heard.";
  default: return `None yet. ${verdict.place ?? ""}${blind}`;
  }
}

function show_episode(row, episode, now) {
  const [time, what] = row.children, begin = moment(episode.begin_time), end = moment(episode.end_time);
  const ago = now.taken - end;
  set_text(time, now.stale || ago > 86400 ? `${ago > 86400 ? `${day(end)} ` : ""}${clock(end)}` : `${span(ago)} ago`);
  const title = episode.title + (episode.detail ? `: ${episode.detail}` : ""), lasted = end > begin ? `, for ${span(end - begin)}` : "";
  set_text(what, `${title_of(now.findings, episode.stage)}: ${title}${lasted} (${SEVERITIES[episode.severity][0].toLowerCase()}, from ${clock(begin)})`);
}

/** Brings the findings up to date. */
export function show_findings(now) {
  const { findings } = now;
  set_text(by_id("findings-head"), now.stale && findings ? `Findings, as of ${when(now.taken)}` : "Findings");
  if (!findings) return;
  keep_list(by_id("findings"), findings.findings, ({ id }) => id, make_finding, (row, finding, index) => show_finding(row, finding, index, now));
  by_id("no-findings").hidden = findings.findings.length > 0;
  set_text(by_id("no-findings"), nothing_text(findings));
  const over = (findings.episodes ?? []).filter(({ end_time }) => end_time).sort((a, b) => moment(b.end_time) - moment(a.end_time)).slice(0, 20);
  by_id("earlier-head").hidden = !over.length;
  const make_episode = () => el("li", {}, el("time", {}), el("span", {}));
  keep_list(by_id("earlier"), over, ({ id, begin_time }) => `${id} ${begin_time}`, make_episode, (row, episode) => show_episode(row, episode, now));
}
