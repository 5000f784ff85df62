/**
 * The report text of the decoder, at both levels, while it is open.
 */
import { by_id } from "./dom.js";
import { Poll } from "./server.js";

let poll;

const is_selected = (box) => !getSelection().isCollapsed && getSelection().containsNode(box, true);

/** @param base the path of the decoder; @param is_held whether people have stopped the page */
export function listen_to_report(base, is_held) {
  const block = by_id("report-block"), form = by_id("report-form"), box = by_id("report");
  const begin = () => {
    poll?.stop();
    poll = undefined;
    if (!block.open) return;
    poll = new Poll(() => `${base}/report?level=${new FormData(form).get("level")}`, 1000, (text) => {
      // Whoever copies lines keeps them under the pointer.
      if (!is_held() && !is_selected(box) && box.textContent !== text) box.textContent = text;
    });
  };
  block.addEventListener("toggle", begin);
  form.addEventListener("change", begin);
}
