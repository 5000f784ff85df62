/**
 * Fields as label and value, and what they mean on demand: any label with dots below opens its meaning.
 */
import { by_id, el, keep_list, set_text } from "./dom.js";
import { age_text, dictionary, field_of, label_of, last_time, value_of, value_text } from "./fields.js";

let opened; // the name of the field whose meaning is open
let shown;  // what is known now

function make_row({ what, name }) {
  const button = el("button", { type: "button", class: "field", "data-field": name, "aria-haspopup": "dialog" }, label_of(name));
  const label = el("dt", {}, button);
  if (what) label.prepend(el("span", { class: "what" }, `${what}: `));
  return el("div", {}, label, el("dd", {}, el("span", {}), el("span", { class: "age" })));
}

/** When the last event of a field was, as an appendix to its value. */
export function last_text(name, now) {
  const time = last_time(now.components, name);
  return time ? ` \u00b7 ${age_text(Number(time), now.taken, now.stale)}` : "";
}

/**
 * Brings a list of fields up to date.
 * @param items each with a name; with `what` a word stands before the label, with `value` it is taken instead of the snapshot's, with
 *     `extra` this stands behind it
 */
export function show_fields(list, items, now) {
  keep_list(list, items, ({ what, name }) => `${what ?? ""} ${name}`, make_row, (row, { name, value, extra }) => {
    const [text, age] = row.lastElementChild.children;
    set_text(text, value_text(name, value !== undefined ? value : value_of(now.components, name), now.taken, now.stale));
    set_text(age, extra ?? last_text(name, now));
  });
}

function show() {
  const field = field_of(opened), value = value_of(shown.components, opened);
  set_text(by_id("meaning-value"), value_text(opened, value, shown.taken, shown.stale) + last_text(opened, shown));
  set_text(by_id("meaning-label"), label_of(opened));
  set_text(by_id("meaning-name"), opened);
  set_text(by_id("meaning-text"), sentence(field.meaning));
  set_text(by_id("meaning-kind"), kind_text(field));
}

const sentence = (text) => (text ? `${text[0].toUpperCase()}${text.slice(1)}.` : "");

/** Kind, unit, and when a field says nothing. */
export function kind_text(field) {
  const parts = [field.unit ? `${field.kind.replace("_", " ")}, ${field.unit}` : field.kind.replace("_", " ")];
  if (field.absent) parts.push(field.absent);
  if (field.applies) parts.push(field.applies === "never" ? "never applies to a receiver" : `applies ${field.applies}`);
  return parts.join(" \u00b7 ");
}

/** The meaning of a field as a sentence. */
export const meaning_of = (name) => sentence(field_of(name).meaning);

/** Keeps an open meaning up to date. */
export function show_meaning(now) {
  shown = now;
  if (opened && by_id("meaning").matches(":popover-open")) show();
}

/** Opens meanings wherever a label is pressed, by pointer or keyboard. */
export function listen_to_labels() {
  document.addEventListener("click", (event) => {
    const button = event.target.closest("button.field");
    if (!button || !shown || !dictionary.size) return;
    opened = button.dataset.field;
    show();
    const box = by_id("meaning");
    box.showPopover();
    const wide = matchMedia("(min-width: 960px)").matches, at = button.getBoundingClientRect();
    box.style.left = wide ? `${Math.max(16, Math.min(at.left, innerWidth - box.offsetWidth - 16))}px` : "";
    box.style.top = wide ? `${at.bottom + 8 + box.offsetHeight < innerHeight ? at.bottom + 8 : Math.max(56, at.top - 8 - box.offsetHeight)}px` : "";
    box.focus({ preventScroll: true });
  });
}
