/**
 * Texts of numbers, durations and moments, as the reports print them, but for counts, which are grouped by a narrow space.
 */

const NARROW = "\u202f";

/** A count with its digits in threes from ten thousand on. Takes a number, a bigint or the text of an integer. */
export function grouped(value) {
  const text = String(value);
  const digits = text.replace("-", "");
  const sign = text.startsWith("-") ? "\u2212" : "";
  return sign + digits.replace(/\B(?=(\d{3})+$)/g, NARROW);
}

/** A rate or a share: three or four digits that matter, and 0 as 0. */
export function rated(value) {
  if (value === 0) return "0";
  return Math.abs(value) < 999.95 ? value.toFixed(Math.abs(value) < 9.995 ? 2 : 1) : grouped(Math.round(value));
}

/** "2d 03h 25m 40s": the largest part that is not 0 leads. At most so many parts. */
export function span(seconds, parts = 4) {
  let left = Math.max(0, Math.floor(Number(seconds)));
  const found = [];
  for (const [size, unit] of [[86400, "d"], [3600, "h"], [60, "m"], [1, "s"]]) {
    const part = Math.floor(left / size);
    left %= size;
    if (found.length) found.push(String(part).padStart(2, "0") + unit);
    else if (part || size === 1) found.push(part + unit);
  }
  return found.slice(0, parts).join(" ");
}

export function bit_rate(bits) {
  for (const [size, unit] of [[1e9, "Gbps"], [1e6, "Mbps"], [1e3, "kbps"]])
    if (bits >= size * 0.999995) return `${(bits / size).toFixed(2)} ${unit}`;
  return `${bits} bps`;
}

export function milliseconds(value) {
  const size = Math.abs(value), sign = value < 0 ? "-" : "";
  if (size >= 60000) return sign + span(size / 1000);
  return size < 1000 ? `${value}ms` : `${(value / 1000).toFixed(3)}s`;
}

export function microseconds(value) {
  const size = Math.abs(value);
  if (size < 1000) return `${value}us`;
  return size < 1e6 ? `${(value / 1e3).toFixed(3)}ms` : `${(value / 1e6).toFixed(3)}s`;
}

/** Time of day, UTC, of seconds since the epoch. */
export const clock = (epoch) => iso(epoch)[1].slice(0, 8);

export const day = (epoch) => iso(epoch)[0];

/** The time of a moment, with its day if that is not today's. */
export const when = (epoch) => (day(epoch) === day(Date.now() / 1000) ? clock(epoch) : `${day(epoch)} ${clock(epoch)}`);

/** Day and time; a record may hold any number, also such as no calendar has. */
function iso(epoch) {
  const date = new Date(epoch * 1000);
  return Number.isNaN(date.getTime()) ? [`${epoch}`, `${epoch} s`] : date.toISOString().split("T");
}

/** Seconds since the epoch of a moment in RFC 3339, or of what already is a number. */
export const moment = (value) => (typeof value === "number" ? value : Date.parse(value) / 1000);
