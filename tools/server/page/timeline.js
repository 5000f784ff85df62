/**
 * What all plots share: the time axis, restarts, changes and gaps as marks, and the moment that people read them at.
 */
import { by_id, el, set_text } from "./dom.js";
import { value_of } from "./fields.js";
import { Plot, draw_axis, legend, letter_of, points } from "./plots.js";
import { SHOWN } from "./series.js";
import { CHANGES } from "./stages.js";
import { clock, moment, span } from "./text.js";

const plots = []; // { plot, stage: its entry in the table of the stages }
let scene, shown;
let cursor = null; // the moment that the plots are read at [epoch s]; null is now

const sizes = new ResizeObserver(() => draw());

export function add_plot(row, stage) {
  const plot = new Plot(row, stage.plot);
  plots.push({ plot, stage });
  sizes.observe(plot.box);
}

function marks_of(now) {
  const { series } = now, from = now.edge - SHOWN;
  const started = now.instance && moment(now.instance.started_at);
  const marks = series.restarts().map((at) => ({ at, restart: true, label: "decoder restarted" }));
  if (started > from && !marks.length) marks.push({ at: started, restart: true, label: "decoder started" });
  for (const [field, label] of CHANGES) {
    const at = value_of(now.components, field);
    if (at) marks.push({ at: Number(at), label });
  }
  return marks.filter(({ at }) => at > from && at <= now.edge).sort((a, b) => a.at - b.at);
}

function show_marks(now) {
  const when = (at) => (now.stale ? `at ${clock(at)}` : `${span(now.taken - at)} ago`);
  const items = scene.marks.map((mark, i) => [mark, letter_of(i), `${mark.label} ${when(mark.at)}`]);
  for (const gap of scene.gaps) {
    if (gap.to < scene.edge - SHOWN) continue;
    items.push([null, "", gap.open ? `no data since ${clock(gap.from)}` : `no data for ${span(Math.round(gap.to - gap.from))}, ${when(gap.from)}`]);
  }
  by_id("marks").hidden = !items.length;
  by_id("marks").replaceChildren(...items.map(([mark, letter, text]) => el("li", {}, legend(mark, letter), text)));
}

function draw() {
  if (!scene) return;
  if (cursor !== null && cursor < scene.edge - SHOWN) move_cursor(null);
  scene.cursor = cursor;
  for (const { plot, stage } of plots) {
    const needed = stage.plot.needed && value_of(shown.components, stage.plot.needed);
    const values = points(stage.plot, shown.series), idle = shown.findings?.stages.find(({ id }) => id === stage.id)?.state === "idle";
    plot.draw(scene, idle && !values.some(Boolean) ? values.map(() => null) : values, needed ? Number(needed) : undefined);
  }
  draw_axis(scene);
}

/** Brings plots and marks up to date with what is known now. */
export function show_timeline(now) {
  const { series } = now;
  const open = now.edge - now.taken > 2 ? [{ from: now.taken, to: now.edge, open: true }] : [];
  shown = now;
  const broken = series.times.map((_, i) => series.is_break(i));
  scene = { times: series.times, broken, edge: now.edge, gaps: [...series.gaps(), ...open], marks: marks_of(now) };
  if (cursor !== null) by_id("time").value = Math.round(cursor - scene.edge); // it stays at its moment, which moves into the past
  draw();
  show_marks(now);
}

function move_cursor(at) {
  cursor = at;
  const time = by_id("time"), behind = at === null ? 0 : Math.round(at - scene.edge);
  time.value = behind;
  time.setAttribute("aria-valuetext", at === null ? "now" : `${span(-behind)} ago, ${clock(at)} UTC`);
  set_text(by_id("time-label"), at === null ? "Time" : clock(at));
}

/** Lets people read all plots at one moment, by the slider or by pressing a plot. */
export function listen_to_timeline() {
  const time = by_id("time"), stages = by_id("stages");
  const set_time = (behind) => {
    if (!scene) return;
    move_cursor(behind > -1 ? null : scene.edge + Math.max(behind, -SHOWN));
    draw();
  };
  const read_at = (event) => {
    const plot = event.target.closest(".plot");
    if (!plot || !event.buttons) return;
    const box = plot.getBoundingClientRect();
    set_time(((event.clientX - box.left) / box.width - 1) * SHOWN);
  };
  stages.addEventListener("pointerdown", read_at);
  stages.addEventListener("pointermove", read_at);
  time.addEventListener("input", () => set_time(Number(time.value)));
  time.addEventListener("keydown", (event) => event.key === "Escape" && set_time(0));
  time.setAttribute("aria-valuetext", "now");
  sizes.observe(by_id("axis-plot"));
}
