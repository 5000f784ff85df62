/**
 * The last ten minutes of the fields that the chain counts and plots: first what the server remembers, then a sample for each snapshot.
 * A rate never reaches over a restart, a gap, or a counter that went back.
 */

import { moment } from "./text.js";

export const SHOWN = 600;  // [s]
const KEPT = SHOWN + 20;   // [s]
const LONGEST_STEP = 3;    // between two samples without a gap [s], unless the server samples more rarely
const SETTLED = 20;        // what a figure is the mean of while it is steady [s]: hosts publish up to a second apart
const QUICK = 3;           // what it is the mean of when it has changed, and a point of a plot is [s]
const CHANGED = 0.4;       // the share by which the two differ then

const difference = (a, b) => (typeof a === "bigint" || typeof b === "bigint" ? Number(BigInt(a) - BigInt(b)) : a - b);

export class Series {
  constructor(names) {
    this.names = names;
    this.clear();
  }

  clear() {
    this.times = [];     // [epoch s]
    this.instances = []; // the id of what published each sample
    this.values = new Map(this.names.map((name) => [name, []]));
    this.gaps_ = [];     // those that the server tells
    this.step_ = LONGEST_STEP;
  }

  get length() {
    return this.times.length;
  }

  /** Takes what the server remembers; what was sampled here before and after it stays. */
  load(history) {
    const times = history.times.map(moment);
    if (!times.length) return;
    const own = this.times.map((time, i) => ({ time, i })).filter(({ time }) => time < times[0] - 0.2 || time > times.at(-1) + 0.2);
    const before = own.filter(({ time }) => time < times[0]), after = own.filter(({ time }) => time > times[0]);
    const ids = times.map((time) => history.instances.findLast(({ at }) => moment(at) <= time + 0.001)?.id ?? history.instances[0]?.id);
    const merge = (old, theirs) => [...before.map(({ i }) => old[i]), ...theirs, ...after.map(({ i }) => old[i])];
    this.instances = merge(this.instances, ids);
    const nothing = times.map(() => null);
    for (const name of this.names) {
      const theirs = history.fields[name];
      this.values.set(name, merge(this.values.get(name), theirs?.length === times.length ? theirs : nothing)); // it may forget between two answers
    }
    this.times = merge(this.times, times);
    this.gaps_ = (history.gaps ?? []).map(({ from, to }) => ({ from: moment(from), to: moment(to) }));
    const steps = times.slice(1).map((time, i) => time - times[i]).sort((a, b) => a - b);
    this.step_ = Math.max(LONGEST_STEP, 2.5 * (steps[steps.length >> 1] ?? 0));
  }

  /** @param read gives the value of a field in the snapshot */
  append(time, instance, read) {
    if (this.length && time <= this.times.at(-1) + 0.05) return;
    this.times.push(time);
    this.instances.push(instance);
    for (const [name, values] of this.values) values.push(read(name) ?? null);
    const old = this.times.findIndex((t) => t >= time - KEPT);
    if (old > 20) for (const list of [this.times, this.instances, ...this.values.values()]) list.splice(0, old);
  }

  /** Whether nothing is known between a sample and the one before it, or another instance published it. */
  is_break(i) {
    return i === 0 || this.times[i] - this.times[i - 1] > this.step_ || this.instances[i] !== this.instances[i - 1];
  }

  /** The growth a second up to a sample, over that many seconds or a little more; null if it cannot be told. */
  rate(name, i, seconds = QUICK) {
    const values = this.values.get(name);
    let from = i;
    while (from > 0 && this.times[i] - this.times[from] < seconds - 0.1) {
      if (this.is_break(from) || values[from] === null || values[from - 1] === null || difference(values[from], values[from - 1]) < 0) break;
      from -= 1;
    }
    const passed = this.times[i] - this.times[from];
    return passed > 0.5 ? difference(values[i], values[from]) / passed : null;
  }

  /** The present rate: quiet while it is steady, and soon another after it has changed or stopped. */
  rate_now(name) {
    if (!this.length) return null;
    const quick = this.rate(name, this.length - 1);
    const settled = quick && this.rate(name, this.length - 1, SETTLED);
    return Math.abs(quick - settled) < CHANGED * settled ? settled : quick;
  }

  /** How much a counter has grown in the time shown, restarts and gaps left out; null if it is not counted. */
  grown(name) {
    const values = this.values.get(name);
    const from = this.times.at(-1) - SHOWN;
    let sum = null;
    for (let i = 1; i < this.length; ++i) {
      if (this.times[i] < from || values[i] === null || values[i - 1] === null || this.instances[i] !== this.instances[i - 1]) continue;
      sum = (sum ?? 0) + Math.max(0, difference(values[i], values[i - 1]));
    }
    return sum;
  }

  /** The seconds that are known of, SHOWN at most. */
  known() {
    return this.length ? Math.min(SHOWN, this.times.at(-1) - this.times[0]) : 0;
  }

  /** Stretches without data between samples, from the first one shown on. */
  gaps() {
    const gaps = [];
    for (let i = 1; i < this.length; ++i)
      if (this.times[i] - this.times[i - 1] > this.step_) gaps.push({ from: this.times[i - 1], to: this.times[i] });
    const told = this.gaps_.filter((gap) => !gaps.some((own) => gap.from < own.to && gap.to > own.from));
    return [...gaps, ...told].sort((a, b) => a.from - b.from);
  }

  /** The moments at which another instance published its first sample. */
  restarts() {
    return this.times.filter((_, i) => i > 0 && this.instances[i] !== this.instances[i - 1]);
  }
}
