/**
 * The plots of the chain: ten minutes on one time axis, so that an incident is a vertical line through all rows. What is drawn comes as
 * moments and values; null is no value.
 */
import { by_id, set_attribute, set_text, svg } from "./dom.js";
import { grouped } from "./text.js";
import { SHOWN } from "./series.js";

const STEPS = [1, 1.2, 1.6, 2, 3, 4, 5, 6, 8, 10];

/** The next round number. */
function round_up(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return power * STEPS.find((step) => step * power >= value * 0.9999);
}

/** A plot's data: the gauge, or the rates of its counters together. */
export function points(plot, series) {
  if (plot.gauge) return series.values.get(plot.gauge).map((v) => (v === null ? null : Number(v) * plot.factor));
  return series.times.map((_, i) => {
    const rates = plot.rates.plus.map((name) => series.rate(name, i)).filter((rate) => rate !== null);
    return rates.length ? rates.reduce((sum, rate) => sum + rate, 0) : null;
  });
}

/** From where to where a plot reaches. Losses far beyond the usual are cut off and told in digits. */
function scale_of(plot, known, needed) {
  if (plot.scale) return plot.scale;
  const room = 1.15;
  const sorted = known.toSorted((a, b) => a - b);
  const highest = plot.bars ? (sorted[Math.floor(sorted.length * 0.98)] ?? 0) : Math.max(...known, needed);
  if (plot.band) {
    const lowest = -Math.min(...known, 0);
    const [up, down] = [highest, lowest].map((v) => round_up(Math.max(v * room, plot.least)));
    return [-down, up];
  }
  return [0, round_up(Math.max(highest * room, plot.least ?? 1))];
}

const px = (v) => v.toFixed(1);
const scale_text = (v) => (Math.abs(v) < 10000 ? String(v) : `${v / 1000}k`).replace("-", "\u2212");

/** A flag of a restart, or a diamond of a change. */
function flag(mark, letter, x, y) {
  const shape = mark.restart ? `M${px(x)} ${y + 1}l7 3.5-7 3.5z` : `M${px(x)} ${y + 1}l3.5 3.5-3.5 3.5-3.5-3.5z`;
  return [svg("path", { class: "flag", d: shape }), svg("text", { x: px(x - (mark.restart ? 4 : 7.5)), y: y + 8, "text-anchor": "end" }, letter)];
}

/** A sample of a mark or of the hatching, for the list below the plots. */
export function legend(mark, letter) {
  const picture = svg("svg", { "aria-hidden": "true" });
  picture.append(...(mark ? flag(mark, letter, mark.restart ? 12 : 15.5, 1) : [svg("rect", { class: "gap", x: 6, width: 13, height: 12 })]));
  return picture;
}

export class Plot {
  /** @param row the element of the stage */
  constructor(row, plot) {
    this.plot_ = plot;
    this.box = row.querySelector(".plot");
    this.svg_ = this.box.querySelector("svg");
    this.unit_ = row.querySelector(".qu");
    [this.top_, this.bottom_] = row.querySelectorAll(".scale span");
    set_text(row.querySelector(".ql"), plot.label);
  }

  /**
   * @param scene what all plots share: times, edge (the moment at the right), gaps, marks, since (of data that is not live), cursor
   * @param values one for each of scene.times
   * @param needed a value that the plot should reach, drawn dashed while it does not
   */
  draw(scene, values, needed) {
    const plot = this.plot_, s = this.svg_, w = this.box.clientWidth, h = this.box.clientHeight;
    const known = values.filter((v, i) => v !== null && scene.times[i] >= scene.edge - SHOWN);
    this.describe_(known);
    if (!w) return;
    const [low, high] = scale_of(plot, known, needed > known.at(-1) ? needed : 0);
    set_text(this.top_, scale_text(high));
    set_text(this.bottom_, scale_text(low));
    const x = (time) => (1 + (time - scene.edge) / SHOWN) * w;
    const y = (v) => h - 0.75 - ((Math.min(Math.max(v, low), high) - low) / (high - low)) * (h - 1.5);
    s.replaceChildren();
    s.setAttribute("viewBox", `0 0 ${w} ${h}`);
    if (plot.band) s.append(svg("rect", { class: "band", x: 0, width: w, y: px(y(plot.band[1])), height: px(y(plot.band[0]) - y(plot.band[1])) }));
    s.append(svg("path", { class: "base", d: `M0 ${h - 0.5}H${w}` }));
    for (const gap of scene.gaps) {
      const a = Math.max(0, x(gap.from)), b = Math.max(a + 3, Math.min(w, x(gap.to)));
      if (x(gap.to) <= 0) continue; // before the plot
      s.append(svg("rect", { class: "gap", x: px(a), width: px(b - a), y: 0, height: h }),
        svg("path", { class: "gap-edge", d: `M${px(a)} 0V${h}M${px(b)} 0V${h}` }));
    }
    if (plot.bars) this.bars_(scene, values, x, y, high, w, h);
    else this.trace_(scene, values, x, y);
    if (needed > known.at(-1))
      s.append(svg("path", { class: "ref-line", d: `M0 ${px(y(needed))}H${w}` }), svg("text", { x: 2, y: px(Math.max(10, y(needed) - 3)) }, `needed ${needed}`));
    for (const mark of scene.marks) s.append(svg("path", { class: mark.restart ? "mark" : "mark change", d: `M${px(x(mark.at))} 0V${h}` }));
    if (!known.length) s.append(svg("text", { x: 6, y: h / 2 + 4 }, "nothing measured"));
    else if (plot.bars && !known.some(Boolean)) s.append(svg("text", { x: 2, y: h - 5 }, "none"));
    this.cursor_(scene, values, x, y, h);
  }

  trace_(scene, values, x, y) {
    let d = "", pen = false;
    values.forEach((v, i) => {
      const X = x(scene.times[i]);
      if (v === null || X < 0) return void (pen = false);
      d += `${pen && !scene.broken[i] ? "L" : "M"}${px(X)} ${px(y(v))}`;
      pen = true;
    });
    this.svg_.append(svg("path", { class: "trace", d }));
  }

  bars_(scene, values, x, y, high, w, h) {
    let bars = "", over = "", first = -1, most = 0;
    values.forEach((v, i) => {
      const X = x(scene.times[i]);
      if (!v || X < 1) return;
      const before = i && !scene.broken[i] ? x(scene.times[i - 1]) : X - 1;
      const d = `M${px(Math.max(0, Math.min(before, X - 1)))} ${h}V${px(y(v))}H${px(X)}V${h}Z`;
      if (v > high) {
        if (first < 0) first = X;
        most = Math.max(most, v);
        over += d;
      } else bars += d;
    });
    this.svg_.append(svg("path", { class: "bars", d: bars }), svg("path", { class: "bars over", d: over }));
    if (first < 0) return;
    const left = first > 48, at = left ? first - 4 : Math.min(first + 4, w);
    this.svg_.append(svg("text", { class: "over-text", x: px(at), y: 12, "text-anchor": left ? "end" : "start" }, grouped(Math.round(most))));
  }

  cursor_(scene, values, x, y, h) {
    let text = this.plot_.unit;
    if (scene.cursor !== null) {
      const i = scene.times.findLastIndex((time) => time <= scene.cursor + 0.5);
      const v = i < 0 || scene.cursor - scene.times[i] > 6 ? null : values[i];
      this.svg_.append(svg("path", { class: "cursor", d: `M${px(x(scene.cursor))} 0V${h}` }));
      if (v !== null && !this.plot_.bars) this.svg_.append(svg("circle", { class: "dot", cx: px(x(scene.cursor)), cy: px(y(v)), r: 2.5 }));
      text = v === null ? "no data" : `${v.toFixed(this.plot_.digits)} ${text}`;
    }
    set_text(this.unit_, text);
    this.unit_.classList.toggle("at", scene.cursor !== null);
  }

  describe_(known) {
    const { label, unit, digits } = this.plot_;
    const text = (v) => v.toFixed(digits);
    set_attribute(this.svg_, "aria-label", known.length
      ? `${label}, last 10 minutes: last ${text(known.at(-1))}, lowest ${text(Math.min(...known))}, highest ${text(Math.max(...known))} ${unit}`
      : `${label}: nothing measured`);
  }
}

/** The time axis above the plots, with the flags of the marks. */
export function draw_axis(scene) {
  const box = by_id("axis-plot"), s = box.querySelector("svg"), w = box.clientWidth, h = box.clientHeight;
  if (!w) return;
  s.replaceChildren();
  s.setAttribute("viewBox", `0 0 ${w} ${h}`);
  for (let minute = -10; minute <= 0; ++minute) {
    const X = (1 + minute / 10) * w;
    s.append(svg("path", { class: "tick", d: `M${px(Math.min(w - 0.5, X + 0.5))} ${h - (minute % 5 ? 3 : 6)}V${h}` }));
    if (minute % 5) continue;
    const text = { "-10": "\u221210 min", "-5": "\u22125", 0: "now" }[minute];
    s.append(svg("text", { x: px(minute ? X : X - 8), y: h - 8, "text-anchor": { "-10": "start", "-5": "middle", 0: "end" }[minute] }, text));
  }
  scene.marks.forEach((mark, i) => s.append(...flag(mark, letter_of(i), (1 + (mark.at - scene.edge) / SHOWN) * w, 0)));
}

export const letter_of = (i) => String.fromCharCode(97 + (i % 26));
