/**
 * What the server remembers of the last ten minutes, for the plots: when the page opens, and when samples were missed, as while people
 * held it or the device slept.
 */
import { SHOWN } from "./series.js";
import { ask } from "./server.js";

const MOST_FIELDS = 32; // that the server tells of in one answer
const MISSED = 3;       // without a sample for so long, it is asked for again [s]
const PAUSE = 5000;     // before it is asked for once more if no answer came [ms]

let is_asked = false;
let is_wanted = true;

/** The series of all fields up to a moment, in as many requests as it takes. */
async function past_of(path, names, to) {
  const parts = [];
  for (let first = 0; first < names.length; first += MOST_FIELDS) {
    const query = new URLSearchParams(names.slice(first, first + MOST_FIELDS).map((field) => ["field", field]));
    query.append("from", (to - SHOWN).toFixed(3));
    query.append("to", to.toFixed(3));
    parts.push(await ask(`${path}/history?${query}`));
  }
  return { ...parts[0], fields: Object.assign({}, ...parts.map(({ fields }) => fields)) };
}

/**
 * Completes a series before a sample is added to it, if something is missing there.
 * @param to the moment of the sample
 * @param on_loaded called when there is more to show
 */
export async function complete(series, path, to, on_loaded) {
  if (!series.length || to - series.times.at(-1) > MISSED) is_wanted = true;
  if (!is_wanted || is_asked) return;
  is_asked = true;
  try {
    series.load(await past_of(path, series.names, to));
    is_wanted = false;
    on_loaded();
  } catch (failure) {
    is_wanted = failure.status === 0; // else the server remembers nothing
    if (is_wanted) await new Promise((resolve) => setTimeout(resolve, PAUSE));
  } finally {
    is_asked = false;
  }
}
