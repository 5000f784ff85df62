/**
 * Every field with its value and its meaning, and a filter. Nothing is made before people open it.
 */
import { by_id, el, keep_list, set_text } from "./dom.js";
import { dictionary, field_of, label_of, names_in, value_of, value_text } from "./fields.js";
import { kind_text, last_text, meaning_of } from "./meaning.js";

let shown;

function make_row(name) {
  return el("div", {}, el("dt", {}, label_of(name), el("span", { class: "code" }, name)), el("dd", {}, el("span", {}), el("span", { class: "age" })),
    el("dd", {}, `${meaning_of(name)} (${kind_text(field_of(name))})`));
}

/** Brings the list up to date if it is open. */
export function show_all_fields(now) {
  shown = now;
  if (!by_id("fields-block").open || !dictionary.size) return;
  const words = by_id("filter").value.toLowerCase().split(/\s+/).filter(Boolean), all = names_in(now.components);
  const hits = all.filter((name) => {
    const text = `${name} ${label_of(name)} ${field_of(name).meaning}`.toLowerCase();
    return words.every((word) => text.includes(word));
  });
  set_text(by_id("filter-count"), `${hits.length} of ${all.length} fields`);
  keep_list(by_id("fieldlist"), hits, (name) => name, make_row, (row, name) => {
    const [value, age] = row.children[1].children;
    set_text(value, value_text(name, value_of(now.components, name), now.taken, now.stale));
    set_text(age, last_text(name, now));
  });
}

export function listen_to_fields() {
  by_id("fields-block").addEventListener("toggle", () => shown && show_all_fields(shown));
  by_id("filter").addEventListener("input", () => shown && show_all_fields(shown));
}
