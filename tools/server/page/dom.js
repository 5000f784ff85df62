/**
 * Making and changing elements. Data becomes text nodes only, never markup.
 */

export const by_id = (id) => document.getElementById(id);

export function el(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  element.append(...children);
  return element;
}

export function svg(name, attributes = {}, text) {
  const element = document.createElementNS("http://www.w3.org/2000/svg", name);
  for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
  if (text !== undefined) element.textContent = text;
  return element;
}

export function sign(name) {
  const element = svg("svg", { class: "sign", "aria-hidden": "true" });
  element.append(svg("use", { href: `#sign-${name}` }));
  return element;
}

/** Changes the text of an element only if it differs, so that selections and assistive technology are left in peace. */
export function set_text(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

export function set_attribute(element, name, value) {
  if (element.getAttribute(name) !== value) element.setAttribute(name, value);
}

export const set_sign = (element, name) => set_attribute(element.querySelector("use"), "href", `#sign-${name}`);

/**
 * Makes the children of a list stand for items, each with a key, in their order. What is there stays the same element, so that focus
 * and selection stay where they are.
 * @param make makes the element of a key that is new
 * @param show brings an element up to date with its item
 */
export function keep_list(list, items, key_of, make, show) {
  const present = new Map([...list.children].map((child) => [child.dataset.key, child]));
  let place = list.firstElementChild;
  items.forEach((item, index) => {
    const key = key_of(item, index);
    let child = present.get(key);
    if (child) present.delete(key);
    else {
      child = make(item, index);
      child.dataset.key = key;
    }
    if (child === place) place = place.nextElementSibling;
    else list.insertBefore(child, place);
    show(child, item, index);
  });
  for (const gone of present.values()) gone.remove();
}
