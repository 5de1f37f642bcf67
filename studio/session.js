// The open picture: what the server gave of it, and the previews that follow the store.
import {ask, askPixels, canvasOf, ServerError, tell, tellForPixels, upload} from './api.js';
import {clamp} from './dom.js';
import {chainOf} from './store.js';

/** A running preview is given this long before a newer one may cancel it: while a slider moves, something shows. */
const kPatience = 250;
const kSmallestSide = 640, kLargestSide = 2000;

export class Session extends EventTarget {
  picture = null;       // {id, name, width, height, screen: {width, height}}
  before = null;        // canvases at screen size
  after = null;
  found = null;         // faces as the library found them; null: not yet, or it cannot
  reports = [];         // one of each step
  shownVersion = -1;    // of the store
  milliseconds = 0;
  opening = null;       // the name of a picture on its way
  #planes = new Map();  // name: {width, height, samples}
  #flying = null;       // {version, since}
  #timer = 0;

  constructor(store) {
    super();
    this.store = store;
    store.addEventListener('change', () => this.refresh());
  }

  #tell(what, detail) { this.dispatchEvent(new CustomEvent(what, {detail})); }

  async open(name, side) {
    const wanted = Math.round(clamp(side, kSmallestSide, kLargestSide));
    this.opening = name;
    this.#tell('busy');
    try {
      const picture = await tell('api/open', {name, side: wanted});
      if (!picture || this.opening !== name) return;
      const pixels = await askPixels(`api/before?id=${picture.id}`);
      if (!pixels || this.opening !== name) return;
      this.opening = null;
      this.picture = picture;
      this.before = this.after = canvasOf(pixels);
      this.found = null;
      this.reports = [];
      this.#flying = null;
      this.#tell('opened');
      this.store.turnTo(name);
      this.#findFaces(picture.id);
    } catch (error) {
      if (this.opening === name) this.opening = null;
      this.#tell('failure', {name, error});
      this.#tell('busy');
    }
  }

  async #findFaces(id) {
    try {
      const answer = await ask(`api/faces?id=${id}`);
      if (this.picture?.id !== id) return;
      this.found = answer.faces?.faces ?? [];
      this.#tell('faces');
    } catch (error) {
      if (this.picture?.id === id) this.#tell('failure', {error});
    }
  }

  /** The faces that effects use: the user's, else those that were found. */
  get faces() { return this.store.state.faces?.faces ?? this.found ?? []; }

  /** Has the newest chain worked on, unless it is already. */
  refresh() {
    if (!this.picture) return;
    const version = this.store.version;
    clearTimeout(this.#timer);
    if (!this.store.state.steps.length) {
      this.#flying = null;
      this.#show(version, this.before, [], 0);
      return;
    }
    if (this.#flying) {
      const age = performance.now() - this.#flying.since;
      if (age < kPatience) {
        this.#timer = setTimeout(() => this.refresh(), kPatience - age);
        return;
      }
    }
    this.#fly(version);
  }

  async #fly(version) {
    const flight = this.#flying = {version, since: performance.now()};
    const {id} = this.picture;
    this.#tell('busy');
    try {
      const answer = await this.#withPlanes(
        () => tellForPixels('api/preview', {id, chain: chainOf(this.store.state)}));
      if (this.picture?.id !== id) return;
      const newest = this.#flying === flight;
      if (newest) this.#flying = null;
      if (answer) this.#show(version, canvasOf(answer), answer.head.steps, performance.now() - flight.since);
      if (newest && this.store.version !== version) this.refresh();
    } catch (error) {
      if (this.#flying === flight) this.#flying = null;
      if (this.picture?.id === id) this.#tell('failure', {error});
    }
    this.#tell('busy');
  }

  #show(version, after, reports, milliseconds) {
    if (version < this.shownVersion) return;
    this.shownVersion = version;
    this.after = after;
    this.reports = reports;
    this.milliseconds = milliseconds;
    this.#tell('preview');
  }

  get working() { return this.#flying !== null; }
  get current() { return this.picture !== null && this.shownVersion === this.store.version; }

  /** A part of the picture as its own pixels; null where it is no longer wanted. */
  async region(rect, width, height, before) {
    const chain = before ? {steps: []} : chainOf(this.store.state);
    const {id} = this.picture;
    const answer = await this.#withPlanes(() => tellForPixels('api/region', {id, chain, rect, width, height, before}));
    return answer && this.picture?.id === id ? canvasOf(answer) : null;
  }

  save(name, replace) {
    return this.#withPlanes(
      () => tell('api/save', {id: this.picture.id, chain: chainOf(this.store.state), name, replace}));
  }

  async depth() {
    const {head, pixels} = await askPixels(`api/depth?id=${this.picture.id}`);
    return {width: head.width, height: head.height, samples: new Uint8ClampedArray(pixels)};
  }

  plane(name) { return this.#planes.get(name); }

  /** Gives the server a mask or a depth map, and its name. */
  async keepPlane(plane) {
    const {plane: name} = await upload(`api/plane?width=${plane.width}&height=${plane.height}`, plane.samples);
    this.#planes.set(name, plane);
    return name;
  }

  /** The server may have let go of planes that undo brings back: it gets them anew. */
  async #withPlanes(request) {
    try {
      return await request();
    } catch (error) {
      if (!(error instanceof ServerError) || error.status !== 410) throw error;
      for (const {mask, depth} of this.store.state.steps)
        for (const name of [mask, depth])
          if (name && this.#planes.has(name)) await this.keepPlane(this.#planes.get(name));
      return request();
    }
  }
}
