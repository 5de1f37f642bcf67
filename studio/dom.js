// Small helpers for elements.
const SVG = 'http://www.w3.org/2000/svg';

const shapes = {
  undo: 'M9 14 4 9l5-5M4 9h10a6 6 0 0 1 0 12h-3', redo: 'm15 14 5-5-5-5m5 5H10a6 6 0 0 0 0 12h3',
  split: 'M12 3v18M5 6h4M5 12h4M5 18h4M15 6h4v12h-4', before: 'M2 12s4-7 10-7 10 7 10 7-4 7-10 7S2 12 2 12Zm10 3a3 3 0 1 0 0-6 3 3 0 0 0 0 6Z',
  plus: 'M12 5v14M5 12h14', minus: 'M5 12h14', loupe: 'M10.5 17a6.5 6.5 0 1 0 0-13 6.5 6.5 0 0 0 0 13ZM15.5 15.5 21 21',
  face: 'M12 21c4.5 0 7-4 7-9s-2.5-9-7-9-7 4-7 9 2.500 9 7 9ZM9 10h.01M15 10h.01M9.500 15.500c1.500 1 3.500 1 5 0',
  theme: 'M12 3a9 9 0 1 0 0 18 9 9 0 0 0 0-18Zm0 0v18', help: 'M9 9a3 3 0 1 1 4.500 2.600c-1 .6-1.500 1.200-1.500 2.400M12 17.500h.01M12 21a9 9 0 1 0 0-18 9 9 0 0 0 0 18Z',
  save: 'M12 4v11m-5-5 5 5 5-5M5 20h14', batch: 'M8 8h12v12H8zM4 16V4h12', recipes: 'M6 3h9l4 4v14H6zM14 3v5h5M9 13h6M9 17h6',
  on: 'M12 4v8M7.500 6.500a7.500 7.500 0 1 0 9 0', grip: 'M9 6h.01M9 12h.01M9 18h.01M15 6h.01M15 12h.01M15 18h.01',
  remove: 'M6 6l12 12M18 6 6 18', open: 'm8 10 4 4 4-4', brush: 'M14 4l6 6-8 8-6-6zM6 12l-2 8 8-2', target: 'M12 3v5M12 16v5M3 12h5M16 12h5M12 13a1 1 0 1 0 0-2 1 1 0 0 0 0 2Z',
  info: 'M12 11v6M12 7.500h.01M12 21a9 9 0 1 0 0-18 9 9 0 0 0 0 18Z', reset: 'M4 4v6h6M4.500 10a8 8 0 1 1-.5 4', copy: 'M9 9h11v11H9zM5 15H4V4h11v1',
  fit: 'M4 9V4h5M20 9V4h-5M4 15v5h5M20 15v5h-5', depth: 'm12 4 9 5-9 5-9-5zM3 14l9 5 9-5', warn: 'M12 4 2.500 20h19zM12 10v5M12 17.500h.01'
};

export function icon(name) {
  const svg = document.createElementNS(SVG, 'svg');
  svg.setAttribute('viewBox', '0 0 24 24');
  svg.setAttribute('class', 'icon');
  svg.setAttribute('aria-hidden', 'true');
  const path = document.createElementNS(SVG, 'path');
  path.setAttribute('d', shapes[name]);
  svg.append(path);
  return svg;
}

/** An element with properties (on… are listeners, dashed ones attributes) and children; null children are left out. */
export function make(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (name.includes('-') || name === 'role' || name === 'for') element.setAttribute(name, value);
    else element[name] = value;
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

/** A button with a sign, and its words beside it or for those who ask. */
export function button(sign, words, onclick, {labelled = false, kind = '', key = ''} = {}) {
  const element = make('button', {type: 'button', className: `${labelled ? 'labelled' : 'bare'} ${kind}`, onclick,
    title: key ? `${words} (${key})` : words, 'aria-label': words});
  if (sign) element.append(icon(sign));
  if (labelled) element.append(make('span', {textContent: words}));
  return element;
}

export function clamp(value, low, high) {
  return Math.min(Math.max(value, low), high);
}

export function announce(words) {
  document.getElementById('live').textContent = words;
}

export function toast(words, kind = '') {
  const element = make('div', {className: `toast ${kind}`, textContent: words});
  document.getElementById('toasts').append(element);
  announce(words);
  setTimeout(() => element.remove(), kind === 'bad' ? 8000 : 3500);
}
