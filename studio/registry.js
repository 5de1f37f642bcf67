// What the effects are, as the library describes them; no effect is known here by its name.
import {ask} from './api.js';

let effects = [];

export async function loadRegistry() {
  effects = (await ask('api/effects')).effects;
}

export function allEffects() { return effects; }
export function effectOf(name) { return effects.find((effect) => effect.name === name); }

/** Parameters that belong together because of what they are called: a drag, a place. */
export function gestureOf(effect) {
  const has = (...names) => names.every((name) => effect.parameters.some((parameter) => parameter.name === name));
  if (has('startX', 'startY', 'endX', 'endY')) return {kind: 'drag', names: ['startX', 'startY', 'endX', 'endY']};
  if (has('centerX', 'centerY')) return {kind: 'spot', names: ['centerX', 'centerY']};
  return null;
}

/** The value of a parameter as text; null where it must be given and is not. */
export function valueOf(step, parameter) { return step.values[parameter.name] ?? parameter.default; }

/** Choices without the numbers that stand for the same words. */
export function wordsOf(parameter) {
  const words = parameter.choices.filter((choice) => !/^-?\d+$/.test(choice));
  return words.length ? words : parameter.choices;
}

export function spoken(word) { return word.charAt(0).toUpperCase() + word.slice(1).replace(/-/g, ' '); }
