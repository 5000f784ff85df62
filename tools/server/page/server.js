/**
 * Asking the server: again and again, one request at a time for each resource, more and more rarely while it does not answer. If it
 * wants a token, the browser asks for it and sends it.
 */

const PATIENCE = 4000;      // an answer that takes longer is none [ms]
const LONGEST_PAUSE = 15000; // between two tries [ms]

/** What came instead of an answer: `status` is that of HTTP, or 0 if the server did not answer at all. */
export class Failure extends Error {
  constructor(status, message) {
    super(message);
    this.status = status;
  }
}

/** One answer, as JSON or as text. Throws a Failure. */
export async function ask(path) {
  const url = new URL(path, location.origin + location.pathname); // the address may name a user, which no request may
  let response;
  try {
    response = await fetch(url, { cache: "no-store", signal: AbortSignal.timeout(PATIENCE) });
    if (!response.ok) {
      const reason = await response.json().then(({ error }) => `: ${error}`, () => "");
      throw new Failure(response.status, `HTTP ${response.status}${reason}`);
    }
    return await (response.headers.get("Content-Type")?.startsWith("application/json") ? response.json() : response.text());
  } catch (error) {
    if (error instanceof Failure) throw error;
    throw new Failure(0, error.message);
  }
}

/** A resource that is asked for until it is stopped. */
export class Poll {
  /**
   * @param path a function that gives the path of the next request
   * @param every [ms] from one request to the next
   * @param on_answer gets the answer and the moment, by performance.now(), at which it was asked for
   * @param on_failure gets the Failure; the path is asked for again later
   */
  constructor(path, every, on_answer, on_failure = () => {}) {
    Object.assign(this, { path, every, on_answer, on_failure });
    this.pause_ = every;
    this.next = 0; // when the next try is, by performance.now()
    this.once_();
  }

  stop() {
    this.stopped_ = true;
    clearTimeout(this.timer_);
  }

  /** Does not wait for the end of a pause that failures have made long. */
  hurry() {
    if (this.busy_ || this.stopped_) return;
    clearTimeout(this.timer_);
    this.once_();
  }

  async once_() {
    const asked = performance.now();
    this.busy_ = true;
    let answer, failure;
    try {
      answer = await ask(this.path());
    } catch (error) {
      failure = error;
    }
    this.busy_ = false;
    if (this.stopped_) return;
    this.pause_ = failure ? Math.min(LONGEST_PAUSE, this.failed_ ? this.pause_ * 2 : this.every) : this.every;
    this.failed_ = Boolean(failure);
    this.next = Math.max(asked + this.pause_, performance.now() + 50);
    this.timer_ = setTimeout(() => this.once_(), this.next - performance.now());
    if (failure) this.on_failure(failure);
    else this.on_answer(answer, asked);
  }
}
