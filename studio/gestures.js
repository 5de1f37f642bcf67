// Steps whose values are a drag or a place in the picture.
import {clamp} from './dom.js';
import {effectOf, valueOf} from './registry.js';
import {say} from './strings.js';

const kGrab = 14;  // CSS pixels
const kShortest = 4;

function number(step, name) {
  const parameter = effectOf(step.effect).parameters.find((each) => each.name === name);
  const value = parameter && valueOf(step, parameter);
  return value === null || value === undefined ? null : Number(value);
}

function fraction(value) { return String(+clamp(value, 0, 1).toFixed(5)); }

function ring(context, x, y, r, bold) {
  for (const [line, colour] of [[3.5, 'rgba(0,0,0,.45)'], [bold ? 2 : 1.25, bold ? '#ffb45e' : '#fff']]) {
    context.lineWidth = line;
    context.strokeStyle = colour;
    context.beginPath();
    context.arc(x, y, r, 0, 7);
    context.stroke();
  }
}

function dot(context, x, y, bold) {
  context.beginPath();
  context.arc(x, y, 6, 0, 7);
  context.fillStyle = bold ? '#ffb45e' : '#fff';
  context.fill();
  context.lineWidth = 1.5;
  context.strokeStyle = 'rgba(0,0,0,.7)';
  context.stroke();
}

/** What both gestures share: values of the step in hand, and new steps of the same kind. */
class Gesture {
  cursor = 'cross';

  constructor(session, step, panel) {
    Object.assign(this, {session, panel, step: step.id, effect: step.effect});
  }

  get store() { return this.session.store; }
  get current() { return this.store.step(this.step); }
  get siblings() { return this.store.state.steps.filter((step) => step.effect === this.effect && !step.off); }

  /** Sets values of the step in hand; `fresh`: of a new one after it with the same settings. */
  put(values, fresh) {
    const old = this.current;
    if (!old) return;
    if (!fresh) {
      this.store.editStep(old.id, (step) => Object.assign(step.values, values), 'gesture');
      return;
    }
    const id = this.store.newId();
    this.store.edit((state) => {
      const at = state.steps.findIndex((step) => step.id === old.id);
      state.steps.splice(at + 1, 0, {...structuredClone(old), id, values: {...old.values, ...values}});
    });
    this.step = id;
    this.panel.turnTo(id);
  }

  place(step, x, y, view) {
    const fx = number(step, x), fy = number(step, y), {width, height} = this.session.picture;
    return fx === null || fy === null ? null : view.toScreen(fx * width, fy * height);
  }

  radius(step, view) { return (number(step, 'radius') ?? 0) * this.session.picture.width * view.scale; }
}

export class DragTool extends Gesture {
  name = 'drag';
  hint = say('dragAgain');
  #from = null;
  #to = null;
  #handle = null;
  #at = null;

  down(p, view) {
    const screen = view.toScreen(p.x, p.y), step = this.current;
    this.#handle = null;
    for (const end of ['end', 'start']) {
      const at = step && this.place(step, `${end}X`, `${end}Y`, view);
      if (at && Math.hypot(at.x - screen.x, at.y - screen.y) < kGrab) this.#handle = end;
      if (this.#handle) return;
    }
    this.#from = this.#to = p;
  }

  move(p) {
    this.#at = p;
    const {width, height} = this.session.picture;
    if (this.#handle)
      this.put({[`${this.#handle}X`]: fraction(p.x / width), [`${this.#handle}Y`]: fraction(p.y / height)}, false);
    else if (this.#from) this.#to = p;
  }

  hover(p) { this.#at = p; }

  up(p, view) {
    this.#handle = null;
    const from = this.#from, {width, height} = this.session.picture;
    this.#from = null;
    if (!from || Math.hypot(p.x - from.x, p.y - from.y) * view.scale < kShortest) return;
    this.put({startX: fraction(from.x / width), startY: fraction(from.y / height), endX: fraction(p.x / width),
      endY: fraction(p.y / height)}, this.current && number(this.current, 'startX') !== null);
  }

  #arrow(context, from, to, r, bold) {
    ring(context, from.x, from.y, r, bold);
    for (const [line, colour] of [[4, 'rgba(0,0,0,.45)'], [2, bold ? '#ffb45e' : '#fff']]) {
      context.lineWidth = line;
      context.strokeStyle = colour;
      context.beginPath();
      context.moveTo(from.x, from.y);
      context.lineTo(to.x, to.y);
      context.stroke();
    }
    dot(context, from.x, from.y, false);
    dot(context, to.x, to.y, bold);
  }

  draw(context, view) {
    for (const step of this.siblings) {
      const from = this.place(step, 'startX', 'startY', view), to = this.place(step, 'endX', 'endY', view);
      if (from && to) this.#arrow(context, from, to, this.radius(step, view), step.id === this.step);
    }
    if (this.#from) {
      const from = view.toScreen(this.#from.x, this.#from.y), to = view.toScreen(this.#to.x, this.#to.y);
      this.#arrow(context, from, to, this.current ? this.radius(this.current, view) : 0, true);
    } else if (this.#at && this.current) {
      const at = view.toScreen(this.#at.x, this.#at.y);
      ring(context, at.x, at.y, this.radius(this.current, view), false);
    }
  }
}

export class SpotTool extends Gesture {
  name = 'spot';
  hint = say('spotHint');
  #moving = false;
  #at = null;

  down(p, view) {
    const screen = view.toScreen(p.x, p.y), step = this.current;
    const at = step && this.place(step, 'centerX', 'centerY', view);
    this.#moving = true;
    const near = at && Math.hypot(at.x - screen.x, at.y - screen.y) < kGrab;
    if (!near) this.#put(p, at !== null);
  }

  move(p) {
    this.#at = p;
    if (this.#moving) this.#put(p, false);
  }

  hover(p) { this.#at = p; }
  up() { this.#moving = false; }

  #put(p, fresh) {
    const {width, height} = this.session.picture;
    this.put({centerX: fraction(p.x / width), centerY: fraction(p.y / height)}, fresh);
  }

  draw(context, view) {
    for (const step of this.siblings) {
      const at = this.place(step, 'centerX', 'centerY', view);
      if (!at) continue;
      ring(context, at.x, at.y, this.radius(step, view), step.id === this.step);
      dot(context, at.x, at.y, step.id === this.step);
    }
    if (this.#at && !this.#moving && this.current) {
      const at = view.toScreen(this.#at.x, this.#at.y);
      ring(context, at.x, at.y, this.radius(this.current, view), false);
    }
  }
}

/** One value that is a point of the picture. */
export class PointTool {
  name = 'pick';
  cursor = 'cross';
  hint = say('focusHint');
  #held = false;

  constructor(session, step, parameter) {
    Object.assign(this, {session, step: step.id, parameter});
  }

  down(p) {
    this.#held = true;
    this.move(p);
  }

  move(p) {
    if (!this.#held) return;
    const {width, height} = this.session.picture, {store} = this.session;
    if (store.step(this.step))
      store.editStep(this.step, (step) => {
        step.values[this.parameter.name] = `${fraction(p.x / width)},${fraction(p.y / height)}`;
      }, this.parameter.name);
  }

  up() { this.#held = false; }

  draw(context, view) {
    const step = this.session.store.step(this.step);
    const point = step && /^([\d.]+),([\d.]+)$/.exec(valueOf(step, this.parameter) ?? '');
    if (!point) return;
    const {width, height} = this.session.picture;
    const at = view.toScreen(point[1] * width, point[2] * height);
    ring(context, at.x, at.y, 16, true);
    dot(context, at.x, at.y, true);
  }
}
