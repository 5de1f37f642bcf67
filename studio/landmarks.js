// Faces over the picture: their points dragged, placed by two eyes, taken away.
import {ask} from './api.js';
import {announce, make} from './dom.js';
import {say, text} from './strings.js';

const kGrab = 18;        // CSS pixels
const kFollow = 0.16;    // how far neighbours follow, in widths of the face
const kLeftPupil = 24, kRightPupil = 70;
const parts = [[0, 'contour'], [19, 'leftEye'], [29, 'leftBrow'], [37, 'mouth'], [55, 'nose'], [65, 'rightEye'],
  [75, 'rightBrow']];
const colours = {contour: '#7fd4ff', leftEye: '#ffd166', rightEye: '#ffd166', leftBrow: '#c8a2ff', rightBrow: '#c8a2ff',
  mouth: '#ff8fa3', nose: '#9be89b'};
const contour = [1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 18, 17, 16, 15, 14, 13, 12, 11, 10];

function partOf(index) { return parts.filter(([first]) => first <= index).pop()[1]; }

/** Sides, top and bottom as the library has them: from brow to chin, from contour to contour. */
function boundsOf(points) {
  const xs = points.slice(0, 19).map(([x]) => x), left = Math.min(...xs), right = Math.max(...xs);
  const bottom = points[0][1], brow = Math.min(...[...points.slice(29, 37), ...points.slice(75, 83)].map(([, y]) => y));
  const eyes = (points[kLeftPupil][1] + points[kRightPupil][1]) / 2;
  const top = 2 * brow - eyes;
  return [left, top, Math.max(right - left, 1e-3), Math.max(bottom - top, 1e-3)];
}

export class FaceTool {
  name = 'faces';
  cursor = 'cross';
  #selected = null;     // {face, point}
  #dragging = null;     // {start: p, points}
  #whole = false;
  #follow = true;
  #eyes = null;         // places that were clicked; null: not placing
  #template = null;

  constructor(session) { this.session = session; }

  get hint() {
    if (this.#eyes) return say(this.#eyes.length ? 'eyesHintRight' : 'eyesHintLeft');
    return this.session.faces.length ? say('facesHint') : say('noFace');
  }

  #edit(change, key = null) {
    const {picture, store} = this.session;
    const faces = structuredClone(this.session.faces);
    change(faces);
    for (const face of faces) face.rect = boundsOf(face.points);
    store.edit((state) => {
      state.faces = {image: {width: picture.width, height: picture.height}, faces};
    }, key);
  }

  #scaled([x, y]) { return {x: x * this.session.picture.width, y: y * this.session.picture.height}; }

  #nearest(p, view) {
    let best = null, least = kGrab;
    this.session.faces.forEach((face, f) => face.points.forEach((point, i) => {
      const at = this.#scaled(point), far = Math.hypot(at.x - p.x, at.y - p.y) * view.scale;
      if (far < least) {
        least = far;
        best = {face: f, point: i};
      }
    }));
    return best;
  }

  down(p, view) {
    if (this.#eyes) {
      this.#eyes.push(p);
      if (this.#eyes.length === 2) this.#place(...this.#eyes);
      this.changed?.();
      return;
    }
    const near = this.#nearest(p, view);
    this.#selected = near;
    if (near) {
      this.#dragging = {start: p, points: structuredClone(this.session.faces[near.face].points)};
      this.#announce();
    }
  }

  move(p) {
    if (!this.#dragging || !this.#selected) return;
    const {width, height} = this.session.picture, {start, points} = this.#dragging;
    this.#shift((p.x - start.x) / width, (p.y - start.y) / height, points);
  }

  up() { this.#dragging = null; }

  /** Moves the point in hand, and what goes with it, from where `points` are. */
  #shift(dx, dy, points) {
    const {face, point} = this.#selected, {width, height} = this.session.picture;
    const reach = kFollow * boundsOf(points)[2] * width, middle = this.#scaled(points[point]);
    this.#edit((faces) => {
      faces[face].points = points.map(([x, y], i) => {
        const at = this.#scaled([x, y]), far = Math.hypot(at.x - middle.x, at.y - middle.y);
        const share = this.#whole || i === point ? 1 : this.#follow ? Math.exp(-((far / reach) ** 2)) : 0;
        return share < 0.01 ? [x, y] : [x + dx * share, y + dy * share];
      });
    }, `face${face}`);
  }

  nudge([dx, dy], fine, view) {
    if (!this.#selected || this.#eyes) return false;
    const step = (fine ? 1 : 4) / view.scale, {width, height} = this.session.picture;
    this.#shift(dx * step / width, dy * step / height,
      structuredClone(this.session.faces[this.#selected.face].points));
    return true;
  }

  /** The next or previous point, for the keyboard. */
  select(by) {
    const {faces} = this.session;
    if (!faces.length) return;
    const count = faces[0].points.length, all = faces.length * count;
    const at = this.#selected ? this.#selected.face * count + this.#selected.point : by > 0 ? -1 : 0;
    const next = (at + by + all) % all;
    this.#selected = {face: Math.floor(next / count), point: next % count};
    this.#announce();
  }

  #announce() {
    const {point} = this.#selected;
    announce(say('point', {number: point, part: text.part[partOf(point)]}));
  }

  /** Lays the face of a drawn portrait over the picture so that its pupils meet two places. */
  async #place(left, right) {
    this.#eyes = null;
    this.#template ??= await ask('api/template');
    const {image, faces: [model]} = this.#template, {width, height} = this.session.picture;
    if (right.x < left.x) [left, right] = [right, left];
    const own = model.points.map(([x, y]) => ({x: x * image.width, y: y * image.height}));
    const from = own[kLeftPupil], to = own[kRightPupil];
    const bx = to.x - from.x, by = to.y - from.y, size = bx * bx + by * by;
    const tx = right.x - left.x, ty = right.y - left.y;
    // One turn and one scale: the quotient of both lines as complex numbers.
    const a = (tx * bx + ty * by) / size, b = (ty * bx - tx * by) / size;
    const points = own.map(({x, y}) => {
      const px = x - from.x, py = y - from.y;
      return [(left.x + a * px - b * py) / width, (left.y + b * px + a * py) / height];
    });
    this.#edit((faces) => faces.push({rect: boundsOf(points), points}));
    this.changed?.();
  }

  draw(context, view) {
    this.session.faces.forEach((face, f) => {
      const at = face.points.map((point) => {
        const p = this.#scaled(point);
        return view.toScreen(p.x, p.y);
      });
      context.lineWidth = 1.25;
      context.strokeStyle = 'rgba(127,212,255,.7)';
      context.beginPath();
      contour.forEach((i, n) => context[n ? 'lineTo' : 'moveTo'](at[i].x, at[i].y));
      context.stroke();
      const span = Math.hypot(at[1].x - at[10].x, at[1].y - at[10].y), r = Math.min(3.5, Math.max(1.6, span / 90));
      at.forEach(({x, y}, i) => {
        const chosen = this.#selected?.face === f && this.#selected.point === i;
        context.beginPath();
        context.arc(x, y, chosen ? r + 3 : r, 0, 7);
        context.fillStyle = chosen ? '#fff' : colours[partOf(i)];
        context.fill();
        context.lineWidth = 1;
        context.strokeStyle = 'rgba(0,0,0,.75)';
        context.stroke();
      });
    });
    for (const p of this.#eyes ?? []) {
      const at = view.toScreen(p.x, p.y);
      context.beginPath();
      context.arc(at.x, at.y, 7, 0, 7);
      context.fillStyle = '#ffb45e';
      context.fill();
    }
  }

  /** @param redraw  redraw(true): the bar itself as well */
  bar(redraw) {
    const option = (words, on, change) => make('button', {type: 'button', className: 'small', textContent: words,
      'aria-pressed': String(on), onclick: () => { change(); redraw(true); }});
    const remove = make('button', {type: 'button', className: 'small', textContent: say('removeFace'),
      disabled: !this.session.faces.length, onclick: () => {
        const {face} = this.#selected ?? {face: 0};
        this.#selected = null;
        this.#edit((faces) => faces.splice(face, 1));
        redraw(true);
      }});
    const again = make('button', {type: 'button', className: 'small', textContent: say('findAgain'),
      disabled: !this.session.store.state.faces, onclick: () => {
        this.#selected = null;
        this.session.store.edit((state) => { state.faces = null; });
        redraw(true);
      }});
    return [
      option(say('wholeFace'), this.#whole, () => { this.#whole = !this.#whole; }),
      option(say('follow'), this.#follow, () => { this.#follow = !this.#follow; }),
      option(say('placeByEyes'), this.#eyes !== null, () => { this.#eyes = this.#eyes ? null : []; }),
      remove, again];
  }
}
