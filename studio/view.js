// The picture on the screen: where it lies, before beside after, full-size parts, the loupe, and the pointer.
import {clamp} from './dom.js';
import {say} from './strings.js';

const kLargestScale = 16;   // screen pixels of one picture pixel
const kRegionDelay = 180;   // milliseconds of rest before a full-size part is asked for
const kHandle = 14;         // how near to the divider a pointer takes it
const kHandleHeight = 0.82;  // below the face, of the picture's height
const kLoupe = 280, kLoupeDelay = 70;
const kCursorStep = 12;

export class View extends EventTarget {
  scale = 1;            // CSS pixels of one picture pixel
  left = 0;             // where the picture's corner lies, CSS pixels
  top = 0;
  fitted = true;
  split = false;
  divider = 0.5;        // share of the picture's width
  holdingBefore = false;
  tool = null;          // {down, move, up, hover, draw, cursor}; null: the hand
  #part = null;         // {rect, before, after, version}
  #partTimer = 0;
  #pointers = new Map();
  #gesture = null;      // what the pointers do now
  #cursor = null;       // of the keyboard, CSS pixels
  #cursorDown = false;
  #spaceHeld = false;
  #drawing = false;
  #loupe = null;        // {x, y} CSS pixels while it shows
  #loupeTimer = 0;

  constructor(session) {
    super();
    this.session = session;
    this.element = document.getElementById('view');
    this.picture = document.getElementById('picture');
    this.overlay = document.getElementById('overlay');
    this.loupe = document.getElementById('loupe');
    session.addEventListener('opened', () => {
      this.#part = null;
      this.fit();
    });
    session.addEventListener('preview', () => {
      if (this.#part && this.#part.version !== session.store.version) this.#part.after = null;
      this.draw();
      this.#wantPart();
      this.#wantLoupe();
    });
    new ResizeObserver(() => this.#resized()).observe(this.element);
    this.#listen();
  }

  get width() { return this.element.clientWidth; }
  get height() { return this.element.clientHeight; }
  get density() { return window.devicePixelRatio || 1; }
  /** The longest side, in device pixels, that a fitted picture can have here. */
  get screenSide() { return Math.max(this.width, this.height) * this.density; }

  toPicture(x, y) { return {x: (x - this.left) / this.scale, y: (y - this.top) / this.scale}; }
  toScreen(x, y) { return {x: x * this.scale + this.left, y: y * this.scale + this.top}; }

  fit() {
    const {picture} = this.session;
    if (!picture) return;
    const margin = 24;
    this.scale = Math.min((this.width - 2 * margin) / picture.width, (this.height - 2 * margin) / picture.height, 1);
    this.scale = Math.max(this.scale, 1e-3);
    this.left = (this.width - picture.width * this.scale) / 2;
    this.top = (this.height - picture.height * this.scale) / 2;
    this.fitted = true;
    this.#moved();
  }

  /** One picture pixel on one pixel of the screen. */
  actualSize() { this.zoomTo(1 / this.density, this.width / 2, this.height / 2); }
  zoomBy(factor) { this.zoomTo(this.scale * factor, this.width / 2, this.height / 2); }

  zoomTo(scale, x, y) {
    const {picture} = this.session;
    if (!picture) return;
    const smallest = Math.min(this.width / picture.width, this.height / picture.height, 1) / 4;
    const next = clamp(scale, smallest, kLargestScale / this.density);
    const at = this.toPicture(x, y);
    this.scale = next;
    this.left = x - at.x * next;
    this.top = y - at.y * next;
    this.fitted = false;
    this.#moved();
  }

  pan(x, y) {
    this.left += x;
    this.top += y;
    this.fitted = false;
    this.#moved();
  }

  setSplit(split) {
    this.split = split;
    this.draw();
    this.#wantPart();
    this.dispatchEvent(new Event('mode'));
  }

  moveDivider(by) {
    this.divider = clamp(this.divider + by, 0, 1);
    this.draw();
  }

  holdBefore(holding) {
    if (this.holdingBefore === holding) return;
    this.holdingBefore = holding;
    this.draw();
    this.dispatchEvent(new Event('mode'));
  }

  get loupeShown() { return this.#loupe !== null; }
  toggleLoupe() {
    this.#loupe = this.#loupe || !this.session.picture ? null : {x: this.width / 2, y: this.height / 2};
    this.loupe.hidden = !this.#loupe;
    this.#wantLoupe();
    this.dispatchEvent(new Event('mode'));
  }

  setTool(tool) {
    this.#cursorDown = false;
    this.tool = tool;
    this.element.dataset.tool = tool ? tool.cursor ?? 'cross' : 'hand';
    this.draw();
  }

  #moved() {
    const {picture} = this.session;
    const reach = 40;  // of the picture stays in sight
    this.left = clamp(this.left, reach - picture.width * this.scale, this.width - reach);
    this.top = clamp(this.top, reach - picture.height * this.scale, this.height - reach);
    this.draw();
    this.#wantPart();
    this.dispatchEvent(new Event('moved'));
  }

  #resized() {
    for (const canvas of [this.picture, this.overlay]) {
      canvas.width = Math.round(this.width * this.density);
      canvas.height = Math.round(this.height * this.density);
    }
    if (this.fitted) this.fit();
    this.draw();
  }

  // ---- Drawing ----

  draw() {
    if (this.#drawing) return;
    this.#drawing = true;
    requestAnimationFrame(() => {
      this.#drawing = false;
      this.#paint();
    });
  }

  #paint() {
    const context = this.picture.getContext('2d');
    context.setTransform(1, 0, 0, 1, 0, 0);
    context.clearRect(0, 0, this.picture.width, this.picture.height);
    this.element.classList.toggle('empty', !this.session.picture);
    const overlay = this.overlay.getContext('2d');
    overlay.setTransform(1, 0, 0, 1, 0, 0);
    overlay.clearRect(0, 0, this.overlay.width, this.overlay.height);
    if (!this.session.picture) return;
    context.scale(this.density, this.density);
    overlay.scale(this.density, this.density);
    const {width, height} = this.session.picture;
    const w = width * this.scale, h = height * this.scale;
    this.#chequer(context, w, h);
    if (this.holdingBefore) this.#layer(context, true);
    else {
      this.#layer(context, false);
      if (this.split) {
        context.save();
        context.beginPath();
        context.rect(this.left, this.top, w * this.divider, h);
        context.clip();
        this.#chequer(context, w, h);
        this.#layer(context, true);
        context.restore();
        this.#drawDivider(overlay, h, w);
      }
    }
    this.tool?.draw?.(overlay, this);
    this.#drawCursor(overlay);
  }

  #chequer(context, w, h) {
    context.fillStyle = this.#pattern ??= this.#makePattern(context);
    context.fillRect(this.left, this.top, w, h);
  }
  #pattern = null;
  #makePattern(context) {
    const tile = new OffscreenCanvas(16, 16), small = tile.getContext('2d');
    small.fillStyle = '#9a9a9a';
    small.fillRect(0, 0, 16, 16);
    small.fillStyle = '#7d7d7d';
    small.fillRect(0, 0, 8, 8);
    small.fillRect(8, 8, 8, 8);
    return context.createPattern(tile, 'repeat');
  }

  #layer(context, before) {
    const {width, height} = this.session.picture;
    const image = before ? this.session.before : this.session.after;
    context.imageSmoothingEnabled = this.scale * width / image.width * this.density < 4;
    context.imageSmoothingQuality = 'high';
    context.drawImage(image, this.left, this.top, width * this.scale, height * this.scale);
    const part = this.#part && (before ? this.#part.before : this.#part.after);
    if (!part) return;
    const {rect} = this.#part;
    const at = this.toScreen(rect.left, rect.top);
    context.imageSmoothingEnabled = this.scale * this.density < 3;
    context.drawImage(part, at.x, at.y, rect.width * this.scale, rect.height * this.scale);
  }

  #tag(context, words, x, alignment) {
    context.font = '600 11px system-ui, "DejaVu Sans", sans-serif';
    const width = context.measureText(words).width + 14, top = Math.max(this.top, 0) + 10;
    const left = alignment === 'right' ? x - width : x;
    context.fillStyle = 'rgba(0,0,0,.55)';
    context.beginPath();
    context.roundRect(left, top, width, 20, 5);
    context.fill();
    context.fillStyle = '#fff';
    context.textBaseline = 'middle';
    context.fillText(words, left + 7, top + 10.5);
  }

  #drawDivider(context, h, w) {
    const x = this.left + w * this.divider;
    this.#tag(context, say('before'), x - 10, 'right');
    this.#tag(context, say('after'), x + 10, 'left');
    const middle = clamp(this.top + h * kHandleHeight, 40, this.height - 40);
    context.lineWidth = 3;
    context.strokeStyle = 'rgba(0,0,0,.45)';
    context.beginPath();
    context.moveTo(x, Math.max(this.top, 0));
    context.lineTo(x, Math.min(this.top + h, this.height));
    context.stroke();
    context.lineWidth = 1.5;
    context.strokeStyle = '#fff';
    context.stroke();
    context.beginPath();
    context.arc(x, middle, 13, 0, 7);
    context.fillStyle = 'rgba(255,255,255,.95)';
    context.shadowColor = 'rgba(0,0,0,.5)';
    context.shadowBlur = 6;
    context.fill();
    context.shadowBlur = 0;
    context.strokeStyle = '#333';
    context.lineWidth = 1.8;
    context.lineCap = context.lineJoin = 'round';
    context.beginPath();
    for (const side of [-1, 1]) {
      context.moveTo(x + side * 3, middle - 4);
      context.lineTo(x + side * 7, middle);
      context.lineTo(x + side * 3, middle + 4);
    }
    context.stroke();
  }

  #drawCursor(context) {
    if (!this.#cursor || document.activeElement !== this.element) return;
    const {x, y} = this.#cursor;
    for (const [width, colour] of [[3, 'rgba(0,0,0,.6)'], [1.2, '#fff']]) {
      context.lineWidth = width;
      context.strokeStyle = colour;
      context.beginPath();
      for (const [dx, dy] of [[1, 0], [-1, 0], [0, 1], [0, -1]]) {
        context.moveTo(x + dx * 4, y + dy * 4);
        context.lineTo(x + dx * 14, y + dy * 14);
      }
      context.stroke();
    }
  }

  // ---- Parts at full size ----

  #visible() {
    const {width, height} = this.session.picture;
    const from = this.toPicture(0, 0), to = this.toPicture(this.width, this.height);
    const left = clamp(Math.floor(from.x), 0, width - 1), top = clamp(Math.floor(from.y), 0, height - 1);
    return {left, top, width: clamp(Math.ceil(to.x), left + 1, width) - left,
      height: clamp(Math.ceil(to.y), top + 1, height) - top};
  }

  /** Asks for the visible part where the screen shows more than the copy holds. */
  #wantPart() {
    clearTimeout(this.#partTimer);
    const {picture} = this.session;
    if (!picture) return;
    const sharp = picture.screen.width / picture.width;
    if (sharp >= 1 || this.scale * this.density <= sharp * 1.05) {
      if (this.#part) {
        this.#part = null;
        this.draw();
      }
      this.dispatchEvent(new Event('part'));
      return;
    }
    this.#partTimer = setTimeout(() => this.#askPart(), kRegionDelay);
  }

  partPending = false;
  async #askPart() {
    if (!this.session.current) return;  // the preview comes first, and asks again
    const {store} = this.session;
    const rect = this.#visible(), share = Math.min(1, this.scale * this.density);
    const width = Math.max(1, Math.round(rect.width * share)), height = Math.max(1, Math.round(rect.height * share));
    const version = store.version, plain = !store.state.steps.some((step) => !step.off);
    const part = {rect, version, before: null, after: null};
    const key = JSON.stringify(rect) + share;
    if (this.#part?.key === key && this.#part.before) part.before = this.#part.before;
    part.key = key;
    this.partPending = true;
    this.dispatchEvent(new Event('part'));
    try {
      if (!part.before) part.before = await this.session.region(rect, width, height, true);
      if (!part.before) return;
      if (plain) part.after = part.before;
      if (this.session.store.version !== version) return;
      this.#part = part;
      this.draw();
      if (!plain) part.after = await this.session.region(rect, width, height, false);
      if (this.#part === part) this.draw();
      // The loupe took its place.
      if (!part.after && this.session.current) this.#partTimer = setTimeout(() => this.#askPart(), 3 * kRegionDelay);
    } catch { /* the preview tells what is wrong */ } finally {
      this.partPending = false;
      this.dispatchEvent(new Event('part'));
    }
  }

  // ---- The loupe ----

  #wantLoupe() {
    if (!this.#loupe || !this.session.picture) return;
    this.#paintLoupe();
    clearTimeout(this.#loupeTimer);
    this.#loupeTimer = setTimeout(() => this.#askLoupe(), kLoupeDelay);
  }

  #loupeRect() {
    const {width, height} = this.session.picture;
    const side = Math.round(kLoupe * this.density);
    const w = Math.min(side, width), h = Math.min(side, height);
    const at = this.toPicture(this.#loupe.x, this.#loupe.y);
    return {left: clamp(Math.round(at.x - w / 2), 0, width - w), top: clamp(Math.round(at.y - h / 2), 0, height - h),
      width: w, height: h};
  }

  #paintLoupe(image = null, rect = this.#loupeRect()) {
    const {loupe} = this;
    const side = Math.round(kLoupe * this.density);
    loupe.width = loupe.height = side;
    loupe.style.width = loupe.style.height = `${kLoupe}px`;
    const gap = 28;
    const x = this.#loupe.x + gap + kLoupe > this.width ? this.#loupe.x - gap - kLoupe : this.#loupe.x + gap;
    const y = clamp(this.#loupe.y - kLoupe / 2, 8, Math.max(8, this.height - kLoupe - 8));
    loupe.style.transform = `translate(${Math.round(Math.max(8, x))}px, ${Math.round(y)}px)`;
    const context = loupe.getContext('2d');
    if (image) {
      context.drawImage(image, 0, 0);
      return;
    }
    const copy = this.holdingBefore ? this.session.before : this.session.after;
    const share = copy.width / this.session.picture.width;
    context.imageSmoothingQuality = 'high';
    context.drawImage(copy, rect.left * share, rect.top * share, rect.width * share, rect.height * share, 0, 0,
      rect.width, rect.height);
  }

  async #askLoupe() {
    if (!this.#loupe || !this.session.current) return;
    const rect = this.#loupeRect(), {version} = this.session.store;
    try {
      const image = await this.session.region(rect, rect.width, rect.height, this.holdingBefore);
      const now = this.#loupe && this.#loupeRect();
      if (image && now && now.left === rect.left && now.top === rect.top && version === this.session.store.version)
        this.#paintLoupe(image, rect);
    } catch { /* the preview tells what is wrong */ }
  }

  // ---- Pointer and keyboard ----

  #listen() {
    const {element} = this;
    element.addEventListener('pointerdown', (event) => this.#down(event));
    element.addEventListener('pointermove', (event) => this.#move(event));
    for (const end of ['pointerup', 'pointercancel']) element.addEventListener(end, (event) => this.#up(event));
    element.addEventListener('wheel', (event) => {
      event.preventDefault();
      const {x, y} = this.#place(event);
      this.zoomTo(this.scale * Math.exp(-event.deltaY * (event.deltaMode ? 0.05 : 0.0016)), x, y);
    }, {passive: false});
    element.addEventListener('dblclick', () => {
      if (!this.tool) this.fitted ? this.actualSize() : this.fit();
    });
    element.addEventListener('blur', () => {
      this.#cursor = null;
      this.draw();
    });
    element.addEventListener('contextmenu', (event) => event.preventDefault());
  }

  #place(event) {
    const box = this.element.getBoundingClientRect();
    return {x: event.clientX - box.left, y: event.clientY - box.top};
  }

  #nearDivider({x, y}) {
    if (!this.split || !this.session.picture) return false;
    const {width, height} = this.session.picture;
    const at = this.left + width * this.scale * this.divider;
    return Math.abs(x - at) < kHandle && y > this.top && y < this.top + height * this.scale;
  }

  #down(event) {
    if (!this.session.picture || event.button === 2) return;
    this.element.setPointerCapture(event.pointerId);
    const place = this.#place(event);
    this.#cursor = null;
    this.#pointers.set(event.pointerId, place);
    if (this.#pointers.size === 2) {
      if (this.#gesture === 'tool') this.tool?.up?.(this.toPicture(place.x, place.y), this);
      this.#gesture = 'pinch';
    } else if (event.button === 1 || this.#spaceHeld) this.#gesture = 'pan';
    else if (this.#nearDivider(place)) this.#gesture = 'divider';
    else if (this.tool) {
      this.#gesture = 'tool';
      this.tool.down?.(this.toPicture(place.x, place.y), this, event);
      this.draw();
    } else this.#gesture = 'pan';
  }

  #move(event) {
    if (!this.session.picture) return;
    const place = this.#place(event), last = this.#pointers.get(event.pointerId);
    if (this.#loupe) {
      this.#loupe = place;
      this.#wantLoupe();
    }
    if (!last) {
      this.element.classList.toggle('onDivider', this.#nearDivider(place));
      this.tool?.hover?.(this.toPicture(place.x, place.y), this);
      if (this.tool) this.draw();
      return;
    }
    if (this.#gesture === 'pinch') this.#pinch(event.pointerId, place);
    else if (this.#gesture === 'pan') this.pan(place.x - last.x, place.y - last.y);
    else if (this.#gesture === 'divider') {
      this.divider = clamp((place.x - this.left) / (this.session.picture.width * this.scale), 0, 1);
      this.draw();
    } else if (this.#gesture === 'tool') {
      const events = event.getCoalescedEvents?.() ?? [];
      for (const each of events.length ? events : [event]) {
        const at = this.#place(each);
        this.tool?.move?.(this.toPicture(at.x, at.y), this);
      }
      this.draw();
    }
    this.#pointers.set(event.pointerId, place);
  }

  #pinch(id, place) {
    const other = [...this.#pointers].find(([key]) => key !== id)?.[1];
    const last = this.#pointers.get(id);
    if (!other) return;
    const distance = (a) => Math.max(1, Math.hypot(a.x - other.x, a.y - other.y));
    this.zoomTo(this.scale * distance(place) / distance(last), (place.x + other.x) / 2, (place.y + other.y) / 2);
    this.pan((place.x - last.x) / 2, (place.y - last.y) / 2);
  }

  #up(event) {
    const place = this.#place(event);
    if (!this.#pointers.delete(event.pointerId)) return;
    if (this.#gesture === 'tool') this.tool?.up?.(this.toPicture(place.x, place.y), this);
    if (!this.#pointers.size) this.#gesture = null;
    else if (this.#gesture === 'pinch') this.#gesture = 'none';
    this.draw();
  }

  /** The keyboard's cursor, for those who work without a pointer. Returns whether the key was one of its. */
  key(event) {
    const arrows = {ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1]};
    if (!this.session.picture) return false;
    if (arrows[event.key]) {
      if (this.tool?.nudge?.(arrows[event.key], event.shiftKey, this)) {
        this.draw();
        return true;
      }
      this.#cursor ??= {x: this.width / 2, y: this.height / 2};
      const step = event.shiftKey ? 1 : kCursorStep;
      this.#cursor.x = clamp(this.#cursor.x + arrows[event.key][0] * step, 0, this.width);
      this.#cursor.y = clamp(this.#cursor.y + arrows[event.key][1] * step, 0, this.height);
      const at = this.toPicture(this.#cursor.x, this.#cursor.y);
      if (this.#cursorDown) this.tool?.move?.(at, this);
      else this.tool?.hover?.(at, this);
      if (this.#loupe) {
        this.#loupe = {...this.#cursor};
        this.#wantLoupe();
      }
      this.draw();
      return true;
    }
    if (event.key === ' ' || event.key === 'Enter') {
      if (!this.#cursor || !this.tool) return false;
      const at = this.toPicture(this.#cursor.x, this.#cursor.y);
      if (this.#cursorDown) this.tool.up?.(at, this);
      else this.tool.down?.(at, this, event);
      this.#cursorDown = !this.#cursorDown;
      this.draw();
      return true;
    }
    return false;
  }

  holdSpace(held) {
    this.#spaceHeld = held;
    this.element.classList.toggle('panning', held);
  }
}
