// Controls made from the description of a parameter.
import {clamp, make} from './dom.js';
import {spoken, valueOf, wordsOf} from './registry.js';
import {say} from './strings.js';

const kSlots = 1000;           // places of a slider
const kBentFrom = 25;          // ranges that reach this many times further than the default are bent
const kBentMiddle = 0.35;      // where the default then lies
const kLargestSlider = 1e6;    // beyond, a number alone is asked for

/** A slider's way between 0..1 and values: straight, or slow at the low end of a long range. */
function wayOf({minimum, maximum, default: text}) {
  const span = maximum - minimum, usual = (Number(text ?? minimum) - minimum) / span;
  const power = usual > 0 && usual < 1 / kBentFrom ? Math.log(usual) / Math.log(kBentMiddle) : 1;
  return {
    value: (share) => minimum + span * share ** power,
    share: (value) => clamp((value - minimum) / span, 0, 1) ** (1 / power)
  };
}

function digitsOf(step) { return step >= 1 ? 0 : step >= 0.1 ? 1 : 2; }

/** A row with a slider and a number; `onvalue` gets text. */
export function slider({label, help = '', unit = '', minimum, maximum, step, whole = false, fallback, onvalue}) {
  const way = wayOf({minimum, maximum, default: fallback});
  const digits = whole ? 0 : digitsOf(step);
  const range = make('input', {type: 'range', min: 0, max: kSlots, step: 1, 'aria-label': label, title: help});
  const number = make('input', {type: 'number', className: 'number', min: minimum, max: maximum, step: whole ? 1 : step,
    'aria-label': unit ? `${label}, ${unit}` : label, title: help});
  const name = make('span', {className: 'name', textContent: label, title: help});
  const row = make('div', {className: 'row slider'}, name, range, number,
    make('span', {className: 'unit', textContent: unit === 'pixels' ? 'px' : unit === 'degrees' ? '°' : unit}));
  const show = (value) => {
    if (document.activeElement !== number) number.value = String(+Number(value).toFixed(4));
    const share = way.share(Number(value));
    if (document.activeElement !== range || Math.abs(range.value / kSlots - share) > 0.02)
      range.value = String(Math.round(share * kSlots));
    range.style.setProperty('--share', `${share * 100}%`);
    range.setAttribute('aria-valuetext', `${+Number(value).toFixed(2)} ${unit}`.trim());
  };
  const take = (value) => {
    const kept = clamp(Number(value.toFixed(digits)), minimum, maximum);
    onvalue(String(kept));
  };
  range.addEventListener('input', () => {
    range.style.setProperty('--share', `${range.value / kSlots * 100}%`);
    take(way.value(range.value / kSlots));
  });
  range.addEventListener('keydown', (event) => {
    const by = {ArrowRight: 1, ArrowUp: 1, ArrowLeft: -1, ArrowDown: -1}[event.key];
    if (!by || event.altKey) return;
    event.preventDefault();
    const size = (whole ? Math.max(1, Math.round(step)) : step) * (event.shiftKey ? 10 : 1);
    take(Number(number.value) + by * size);
  });
  if (fallback !== undefined && fallback !== null)
    for (const element of [range, name]) element.addEventListener('dblclick', () => onvalue(String(fallback)));
  number.addEventListener('input', () => {
    const value = Number(number.value);
    if (number.value !== '' && value >= minimum && value <= maximum) onvalue(String(whole ? Math.round(value) : value));
  });
  number.addEventListener('blur', () => show(row.dataset.value));
  row.show = (value) => {
    row.dataset.value = value;
    show(value);
  };
  return row;
}

function labelled(parameter, field) {
  field.setAttribute('aria-label', parameter.title);
  field.title = parameter.help;
  return make('label', {className: 'row field'}, make('span', {className: 'name', textContent: parameter.title,
    title: parameter.help}), field);
}

/** A list to choose from: pairs of value and words. */
export function chooser(parameter, pairs, onvalue) {
  const list = make('select', {onchange: () => onvalue(list.value)});
  const fill = (entries) => list.replaceChildren(...entries.map(([value, words]) =>
    make('option', {value, textContent: words})));
  fill(pairs);
  const row = labelled(parameter, list);
  row.fill = fill;
  row.show = (value) => { list.value = value; };
  return row;
}

/**
 * One row for a parameter, with show(step) to follow the state; `set` gets text.
 * @param context {session, lookups, pick(parameter)}
 */
export function controlFor(parameter, context, set) {
  if (parameter.name === 'faceIndex' && parameter.kind === 'whole') return faceControl(parameter, context, set);
  const rows = {
    number: numberControl, whole: numberControl, choice: choiceControl, switch: switchControl, point: pointControl,
    file: fileControl, colour: colourControl, text: textControl};
  return rows[parameter.kind](parameter, context, set);
}

function following(row, parameter, shown = (value) => value) {
  const {show} = row;
  row.follow = (step) => show(shown(valueOf(step, parameter)));
  return row;
}

function numberControl(parameter, context, set) {
  const whole = parameter.kind === 'whole';
  const ranged = parameter.minimum !== undefined && parameter.maximum - parameter.minimum <= kLargestSlider;
  if (!ranged) {
    const field = make('input', {type: 'number', className: 'number wide', step: whole ? 1 : 'any',
      oninput: () => { if (field.value !== '' && field.validity.valid) set(field.value); }});
    if (parameter.minimum !== undefined) Object.assign(field, {min: parameter.minimum, max: parameter.maximum});
    const row = labelled(parameter, field);
    row.show = (value) => { if (document.activeElement !== field) field.value = value ?? ''; };
    return following(row, parameter);
  }
  const row = slider({label: parameter.title, help: parameter.help, unit: parameter.unit, minimum: parameter.minimum,
    maximum: parameter.maximum, step: parameter.step || 1, whole, fallback: parameter.default, onvalue: set});
  return following(row, parameter, (value) => value ?? parameter.minimum);
}

function choiceControl(parameter, context, set) {
  return following(chooser(parameter, wordsOf(parameter).map((word) => [word, spoken(word)]), set), parameter);
}

function faceControl(parameter, {session}, set) {
  const row = chooser(parameter, [], set);
  const {show} = row;
  row.follow = (step) => {
    const value = valueOf(step, parameter);
    const count = Math.max(session.faces.length, Number(value) + 1);
    row.fill([['-1', say('allFaces')],
      ...Array.from({length: count}, (_, i) => [String(i), say('faceNumber', {number: i + 1})])]);
    show(value);
  };
  return row;
}

function switchControl(parameter, context, set) {
  const box = make('input', {type: 'checkbox', className: 'switch', onchange: () => set(String(box.checked))});
  const row = labelled(parameter, box);
  row.show = (value) => { box.checked = value === 'true'; };
  return following(row, parameter);
}

function pointControl(parameter, {pick}, set) {
  const automatic = parameter.choices[0];
  const chosen = make('button', {type: 'button', className: 'small grow', title: say('pickLong'),
    onclick: () => pick(parameter)});
  const reset = make('button', {type: 'button', className: 'small', textContent: say('automatic'),
    onclick: () => set(automatic)});
  const row = make('div', {className: 'row field', role: 'group', 'aria-label': parameter.title},
    make('span', {className: 'name', textContent: parameter.title, title: parameter.help}), chosen, reset);
  row.show = (value) => {
    const point = /^([\d.]+),([\d.]+)$/.exec(value ?? '');
    chosen.textContent = point ? point.slice(1).map((part) => `${Math.round(part * 100)} %`).join('  ') : say('pick');
    reset.disabled = !automatic || value === automatic;
    reset.setAttribute('aria-pressed', String(value === automatic));
  };
  return following(row, parameter);
}

function fileControl(parameter, {lookups}, set) {
  const pairs = [['', say('none')], ...lookups().map((name) => [name, name])];
  const row = following(chooser(parameter, pairs, set), parameter);
  row.hidden = pairs.length === 1;
  return row;
}

function colourControl(parameter, context, set) {
  const field = make('input', {type: 'color', oninput: () => set(field.value)});
  const row = labelled(parameter, field);
  row.show = (value) => { field.value = value ?? '#000000'; };
  return following(row, parameter);
}

function textControl(parameter, context, set) {
  const field = make('input', {type: 'text', oninput: () => set(field.value)});
  const row = labelled(parameter, field);
  row.show = (value) => { if (document.activeElement !== field) field.value = value ?? ''; };
  return following(row, parameter);
}
