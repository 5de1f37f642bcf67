// Painting by hand: masks, and regions of a depth map pushed nearer or farther. What is painted has the size of the
// screen's copy of the picture.
import {clamp, make} from './dom.js';
import {slider} from './controls.js';
import {say} from './strings.js';

/** Shared by all brushes, so that a size is found once. Size: percent of the picture's longer side. */
const brush = {size: 6, softness: 50, erase: false};

class Brush {
  name = 'brush';
  cursor = 'none';
  #at = null;
  #last = null;

  constructor(session, plane) {
    this.session = session;
    this.plane = plane;
    this.tint = new OffscreenCanvas(plane.width, plane.height);
    this.shown = true;
    this.repaint(0, 0, plane.width, plane.height);
  }

  get radius() { return Math.max(1.5, brush.size / 200 * Math.max(this.plane.width, this.plane.height)); }
  #local(p) {
    const {width, height} = this.session.picture;
    return {x: p.x / width * this.plane.width, y: p.y / height * this.plane.height};
  }

  down(p) {
    this.begin();
    this.#last = this.#local(p);
    this.#dab(this.#last);
  }

  move(p) {
    this.#at = p;
    if (!this.#last) return;
    const to = this.#local(p), from = this.#last;
    const distance = Math.hypot(to.x - from.x, to.y - from.y), spacing = Math.max(1, this.radius / 5);
    const count = Math.floor(distance / spacing);
    for (let i = 1; i <= count; i++)
      this.#dab({x: from.x + (to.x - from.x) * i * spacing / distance, y: from.y + (to.y - from.y) * i * spacing / distance});
    if (count) {
      const share = count * spacing / distance;
      this.#last = {x: from.x + (to.x - from.x) * share, y: from.y + (to.y - from.y) * share};
    }
  }

  hover(p) { this.#at = p; }

  up() {
    if (!this.#last) return;
    this.#last = null;
    this.finish();
  }

  /** Calls touch(index, strength 0..1) for the pixels under the brush. */
  #dab(at) {
    const {width, height} = this.plane, r = this.radius, hard = 1 - brush.softness / 100;
    const left = clamp(Math.floor(at.x - r), 0, width), right = clamp(Math.ceil(at.x + r) + 1, 0, width);
    const top = clamp(Math.floor(at.y - r), 0, height), bottom = clamp(Math.ceil(at.y + r) + 1, 0, height);
    for (let y = top; y < bottom; y++)
      for (let x = left; x < right; x++) {
        const far = Math.hypot(x + 0.5 - at.x, y + 0.5 - at.y) / r;
        if (far >= 1) continue;
        const fall = hard >= 1 ? 1 : clamp((1 - far) / (1 - hard), 0, 1);
        this.touch(y * width + x, fall * fall * (3 - 2 * fall));
      }
    if (right > left && bottom > top) this.repaint(left, top, right - left, bottom - top);
  }

  repaint(left, top, width, height) {
    const image = new ImageData(width, height);
    for (let y = 0, to = 0; y < height; y++)
      for (let x = 0; x < width; x++, to += 4) this.colour(image.data, to, (top + y) * this.plane.width + left + x);
    this.tint.getContext('2d').putImageData(image, left, top);
  }

  draw(context, view) {
    const {width, height} = this.session.picture;
    if (this.shown) context.drawImage(this.tint, view.left, view.top, width * view.scale, height * view.scale);
    if (!this.#at) return;
    const at = view.toScreen(this.#at.x, this.#at.y), r = this.radius * width / this.plane.width * view.scale;
    for (const [line, colour] of [[3, 'rgba(0,0,0,.5)'], [1.25, '#fff']]) {
      context.lineWidth = line;
      context.strokeStyle = colour;
      context.beginPath();
      context.arc(at.x, at.y, r, 0, 7);
      context.stroke();
    }
  }

  nudgeSize(by) {
    brush.size = clamp(Math.round(brush.size * (by > 0 ? 1.25 : 0.8) * 10) / 10, 0.5, 40);
  }

  sizeRows(redraw) {
    const size = slider({label: say('size'), minimum: 0.5, maximum: 40, step: 0.5, fallback: 6, unit: '%',
      onvalue: (value) => { brush.size = Number(value); size.show(value); redraw(); }});
    const softness = slider({label: say('softness'), minimum: 0, maximum: 100, step: 1, whole: true, fallback: 50,
      unit: '%', onvalue: (value) => { brush.softness = Number(value); softness.show(value); }});
    size.show(brush.size);
    softness.show(brush.softness);
    return [size, softness];
  }
}

export class MaskBrush extends Brush {
  hint = say('maskHint');

  constructor(session, step) {
    const {width, height} = session.picture.screen, kept = session.plane(step.mask);
    super(session, {width, height, samples: kept ? kept.samples.slice() : new Uint8ClampedArray(width * height)});
    this.step = step.id;
    brush.erase = false;
  }

  begin() {}
  touch(i, strength) {
    const {samples} = this.plane;
    samples[i] = brush.erase ? Math.min(samples[i], 255 * (1 - strength)) : Math.max(samples[i], 255 * strength);
  }
  colour(data, to, i) {
    data[to] = 235;
    data[to + 1] = 60;
    data[to + 2] = 70;
    data[to + 3] = this.plane.samples[i] * 0.55;
  }

  async finish() {
    const plane = {...this.plane, samples: this.plane.samples.slice()};
    const empty = plane.samples.every((sample) => sample === 0);
    const name = empty ? '' : await this.session.keepPlane(plane);
    if (this.session.store.step(this.step)) this.session.store.editStep(this.step, (step) => { step.mask = name; });
  }

  invert() {
    this.plane.samples.forEach((sample, i, all) => { all[i] = 255 - sample; });
    this.repaint(0, 0, this.plane.width, this.plane.height);
    this.finish();
  }

  toggleErase() { brush.erase = !brush.erase; }

  bar(redraw) {
    const erase = make('button', {type: 'button', className: 'small', textContent: say('erase'), title: 'E',
      'aria-pressed': String(brush.erase), onclick: () => { this.toggleErase(); redraw(true); }});
    const show = make('button', {type: 'button', className: 'small', textContent: say('showMask'),
      'aria-pressed': String(this.shown), onclick: () => { this.shown = !this.shown; redraw(true); }});
    const invert = make('button', {type: 'button', className: 'small', textContent: say('invert'),
      onclick: () => { this.invert(); redraw(); }});
    return [...this.sizeRows(redraw), erase, invert, show];
  }
}

export class DepthBrush extends Brush {
  hint = say('depthHint');
  #base = null;
  #stroke = null;
  #sign = 1;
  #amount = 30;

  constructor(session, step, plane) {
    super(session, {...plane, samples: plane.samples.slice()});
    this.step = step.id;
  }

  begin() {
    this.#base = this.plane.samples.slice();
    this.#stroke = new Float32Array(this.#base.length);
  }
  touch(i, strength) {
    this.#stroke[i] = Math.max(this.#stroke[i], strength);
    this.plane.samples[i] = this.#base[i] + this.#sign * this.#amount * 2.55 * this.#stroke[i];
  }
  /** Near things warm, far things cold. */
  colour(data, to, i) {
    const near = this.plane.samples[i] / 255;
    data[to] = 40 + 215 * near;
    data[to + 1] = 70 + 110 * (1 - Math.abs(2 * near - 1));
    data[to + 2] = 220 - 190 * near;
    data[to + 3] = 165;
  }

  async finish() {
    const name = await this.session.keepPlane({...this.plane, samples: this.plane.samples.slice()});
    if (this.session.store.step(this.step)) this.session.store.editStep(this.step, (step) => { step.depth = name; });
  }

  bar(redraw) {
    const side = (words, sign) => make('button', {type: 'button', className: 'small', textContent: words,
      'aria-pressed': String(this.#sign === sign), onclick: () => { this.#sign = sign; redraw(true); }});
    const amount = slider({label: say('amount'), minimum: 1, maximum: 100, step: 1, whole: true, fallback: 30, unit: '%',
      onvalue: (value) => { this.#amount = Number(value); amount.show(value); }});
    amount.show(this.#amount);
    const show = make('button', {type: 'button', className: 'small', textContent: say('showDepth'),
      'aria-pressed': String(this.shown), onclick: () => { this.shown = !this.shown; redraw(true); }});
    return [make('div', {className: 'pair', role: 'group', 'aria-label': say('pushDepth')},
      side(say('nearer'), 1), side(say('farther'), -1)), ...this.sizeRows(redraw), amount, show];
  }
}
