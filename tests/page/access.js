/*
 * What can be checked of accessibility in a page as it stands, after WCAG 2.2. Called with the name of a check; gives the offences as texts.
 */
const checks = {
  /** 1.4.3: text of 4.5 to 1 against what lies behind it, large text of 3 to 1. The lowest contrast comes first. */
  contrast() {
    const parse = (text) => {
      const [r, g, b, a = 1] = text.match(/[\d.]+/g).map(Number);
      return { r, g, b, a };
    };
    const over = (front, back) => {
      const mix = (f, b) => f * front.a + b * (1 - front.a);
      return { r: mix(front.r, back.r), g: mix(front.g, back.g), b: mix(front.b, back.b), a: 1 };
    };
    const luminance = ({ r, g, b }) => {
      const [x, y, z] = [r, g, b].map((c) => (c / 255 <= 0.04045 ? c / 255 / 12.92 : ((c / 255 + 0.055) / 1.055) ** 2.4));
      return 0.2126 * x + 0.7152 * y + 0.0722 * z;
    };
    const behind = (element) => {
      const layers = [];
      for (let e = element; e; e = e.parentElement) layers.push(parse(getComputedStyle(e).backgroundColor));
      return layers.reverse().reduce((back, front) => over(front, back), { r: 255, g: 255, b: 255, a: 1 });
    };
    const found = [];
    let texts = 0;
    const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
    while (walker.nextNode()) {
      const node = walker.currentNode, element = node.parentElement;
      if (!node.data.trim() || !element.checkVisibility({ visibilityProperty: true }) || element.closest(".sr, dt, template, script")?.matches(".sr, template, script")) continue;
      const range = document.createRange();
      range.selectNodeContents(node);
      const box = range.getBoundingClientRect();
      if (box.width < 2 || box.height < 2) continue;
      const style = getComputedStyle(element), is_svg = element instanceof SVGElement;
      const back = behind(element), front = over(parse(is_svg ? style.fill : style.color), back);
      const [light, dark] = [luminance(front), luminance(back)].sort((a, b) => b - a);
      const ratio = (light + 0.05) / (dark + 0.05), size = parseFloat(style.fontSize);
      const least = size >= 24 || (size >= 18.66 && Number(style.fontWeight) >= 600) ? 3 : 4.5;
      texts += 1;
      if (ratio < least) found.push(`${ratio.toFixed(2)} "${node.data.trim()}" ${element.tagName} ${element.className.baseVal ?? element.className}`);
    }
    return texts > 10 ? found.sort() : [`only ${texts} texts were looked at`];
  },

  /** 2.5.8: what can be pressed is 24 px in both directions, but for links within a sentence. */
  targets() {
    const found = [];
    for (const e of document.querySelectorAll("a[href], button, input, summary")) {
      if (!e.checkVisibility({ visibilityProperty: true }) || e.closest(".skip, [popover]")) continue;
      const in_sentence = e.tagName === "A" && e.parentElement.closest("p")?.textContent.trim() !== e.textContent.trim();
      if (in_sentence && !e.matches(".ref")) continue;
      const target = e.closest("label") ?? e; // pressing a label is pressing what is in it
      target.scrollIntoView({ block: "center" });
      const box = target.getBoundingClientRect(), x = box.x + box.width / 2, y = box.y + box.height / 2;
      const hits = (X, Y) => target.contains(document.elementFromPoint(X, Y));
      if (![[x - 11.5, y], [x + 11.5, y], [x, y - 11.5], [x, y + 11.5]].every(([X, Y]) => hits(X, Y)) && (box.width < 24 || box.height < 24))
        found.push(`${e.tagName} ${e.id || e.className} "${e.textContent.trim()}" ${box.width.toFixed(0)}x${box.height.toFixed(0)}`);
    }
    scrollTo(0, 0);
    return found;
  },

  /** 1.4.10: nothing is wider than the window. */
  sideways() {
    const wide = document.documentElement.scrollWidth - document.documentElement.clientWidth;
    return wide > 0 ? [`${wide} px too wide`] : [];
  },

  /** Identifiers are unique, and what refers to one finds it. */
  references() {
    const ids = [...document.querySelectorAll("[id]")].map((e) => e.id);
    const found = ids.filter((id, i) => ids.indexOf(id) !== i).map((id) => `${id} twice`);
    for (const e of document.querySelectorAll("[aria-controls], [aria-describedby], [aria-labelledby], [for]"))
      for (const name of ["aria-controls", "aria-describedby", "aria-labelledby", "for"])
        for (const id of e.getAttribute(name)?.split(" ") ?? []) if (!document.getElementById(id)) found.push(`${name}: ${id} is not there`);
    return found;
  },

  /** 1.3.1: headings go down one level at a time, and there is one of the first. */
  headings() {
    const levels = [...document.querySelectorAll("h1, h2, h3, h4")].filter((e) => e.checkVisibility()).map((e) => Number(e.tagName[1]));
    const found = levels.filter((level, i) => i > 0 && level > levels[i - 1] + 1).map((level, i) => `h${level} is ${i + 1} levels too deep`);
    return levels.filter((level) => level === 1).length === 1 ? found : ["not one h1"];
  },

  /** 2.4.7, 1.4.11: the element that has the focus shows it, by an outline of 2 px that stands out from what lies behind. */
  focus() {
    const e = document.activeElement;
    const drawn = (style) => style.outlineStyle !== "none" && parseFloat(style.outlineWidth) >= 2;
    const shows = [getComputedStyle(e), getComputedStyle(e, "::after"), getComputedStyle(document.getElementById("axis-plot"))];
    return e.matches(":focus-visible") && shows.some(drawn) ? [] : [`${e.tagName} ${e.id || e.className} does not show the focus`];
  },
};
return checks[arguments[0]]();
