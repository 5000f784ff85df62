/**
 * What the fields are, from the server's dictionary, and what they hold, from a snapshot. Values become texts here as the reports print
 * them; integers that a number cannot hold are taken from the exact text beside them.
 */
import { bit_rate, clock, day, grouped, microseconds, milliseconds, rated, span } from "./text.js";

export const dictionary = new Map(); // by public name, arrays as "sources[]"
const sharers = new Map();           // by the label of a report's line the one field that it stands for, or null
const last_times = new Map();        // of a counter, or an extreme, the field with its moment

export function learn(description) {
  for (const field of description.fields) {
    dictionary.set(field.name, field);
    if (field.kind !== "event_time" && field.kind !== "extreme")
      for (const { label } of field.report_lines) sharers.set(label_key(field, label), sharers.has(label_key(field, label)) ? null : field.name);
    if (field.relation && ["last_of", "at_of"].includes(field.relation.type) && !last_times.has(field.relation.field))
      last_times.set(field.relation.field, field.name);
  }
}

export const field_of = (name) => dictionary.get(name.replace(/\[\d+\]/, "[]"));

/** Labels stand for the only number or state in their line; of a line with several, each field goes by its own name. */
const label_key = (field, label) => `${field.name.replace(/[^.]*$/, "")} ${label}`;

const ACRONYMS = /\b(afd|av|dts|fec|gop|id|klv|nal|ntp|pcrs?|pes|pid|pll|ppm|pps|pts|rtp|rtt|sdi|sei|sps|srt|stc|ts|vps)\b/g;

/** The label of a field's line in the reports, or else its own name in words; of an array with the element's number, from 1 on. */
export function label_of(name) {
  const field = field_of(name), element = name.match(/\[(\d+)\]/);
  const lines = field?.report_lines ?? [];
  const own = name.replace(/^\w+\.(\w+\[\d+\]\.)?/, "").replaceAll(/[._]/g, " ").replace(ACRONYMS, (word) => word.toUpperCase().replace("PCRS", "PCRs"));
  const stands_alone = lines.length === 1 && lines[0].label.length > 2 && sharers.get(label_key(field, lines[0].label)) === field.name;
  const label = stands_alone ? lines[0].label : own[0].toUpperCase() + own.slice(1);
  return element ? `${label} ${Number(element[1]) + 1}` : label;
}

/**
 * The value of a field, "tdemux.sources[2].pid" for one of an element.
 * @return undefined if it does not apply, null if it is absent or not measured, a BigInt beyond what a number holds
 */
export function value_of(components, name) {
  let value = components;
  let holder, last;
  for (const part of name.split(".")) {
    const [, member, element] = part.match(/^([^[]+)(?:\[(\d+)\])?$/) ?? [];
    if (value === null || typeof value !== "object" || member === undefined) return undefined;
    [holder, last] = [value, member];
    value = value[member];
    if (element !== undefined) value = Array.isArray(value) ? value.find((e) => e.index === Number(element)) : undefined;
  }
  const exact = holder?.[`${last}_s`];
  return exact !== undefined && /^-?\d+$/.test(exact) ? BigInt(exact) : value;
}

const numeric = (value) => typeof value === "number" || typeof value === "bigint";

/** A number of a field with its unit, as the reports print it. */
function quantity(field, value) {
  if (typeof value === "number" && !Number.isInteger(value)) return `${rated(value)}${field.unit ? ` ${field.unit}` : ""}`;
  const size = Number(value);
  if (field.kind === "counter" && field.unit !== "bytes") return grouped(value); // the label says of what
  switch (field.unit) {
    case "bit/s": return bit_rate(size);
    case "kbit/s": return bit_rate(size * 1000);
    case "us": return microseconds(size);
    case "ms": return milliseconds(size);
    case "s": return span(size);
    case "%": return `${value}%`;
    case null: case "id": case "PID": case "port": case "count": case "index": return field.kind === "identity" ? String(value) : grouped(value);
    default: return `${grouped(value)} ${field.unit}`;
  }
}

/** @param now the moment of the snapshot, which ages count to [epoch s]; with `clocks` moments are told instead */
export function age_text(epoch, now, clocks) {
  const age = now - epoch;
  if (clocks || age < 0) return age > 86400 ? `at ${day(epoch)} ${clock(epoch)}` : `at ${clock(epoch)}`;
  return `${span(age)} ago`;
}

/** What a field holds, in words. */
export function value_text(name, value, now, clocks) {
  const field = field_of(name);
  if (value === undefined) return "does not apply";
  if (value === null) return field?.kind === "event_time" ? "never" : "none";
  if (field && numeric(value)) {
    if (field.kind === "event_time") return age_text(Number(value), now, clocks);
    if (field.kind === "state") {
      const state = field.states?.find((s) => BigInt(s.value_s ?? s.value) === BigInt(value));
      return state?.text ?? state?.name?.replaceAll("_", " ") ?? String(value);
    }
    if (field.kind === "flag") return value ? "yes" : "no";
    return quantity(field, value);
  }
  if (typeof value === "boolean") return value ? "yes" : "no";
  if (typeof value === "object") return value.text ?? value.name?.replaceAll("_", " ") ?? value.value_s ?? String(value.value);
  return String(value);
}

/** When the last event of a counter was, or the moment of an extreme [epoch s]; undefined if the record does not say. */
export function last_time(components, name) {
  const element = name.match(/\[\d+\]/)?.[0];
  const time = last_times.get(name.replace(/\[\d+\]/, "[]"));
  return time && (value_of(components, element ? time.replace("[]", element) : time) ?? undefined);
}

/** The names of all fields as they stand in a snapshot: those of arrays once for each element that is in use. */
export function names_in(components) {
  const names = [];
  for (const { name } of dictionary.values()) {
    if (!name.includes("[]")) names.push(name);
    else {
      const elements = value_of(components, name.slice(0, name.indexOf("[]")));
      if (Array.isArray(elements)) for (const { index } of elements) names.push(name.replace("[]", `[${index}]`));
    }
  }
  return names;
}
