// What the user has made of the open picture, with its history. Every picture keeps its own.
const kMostUndo = 200;
const kMergeWithin = 1200;  // milliseconds between two moves of one control that are one step of undo

export class Store extends EventTarget {
  #states = new Map();
  #name = null;
  #undo = [];
  #redo = [];
  #lastKey = null;
  #lastTime = 0;
  #nextId = 1;
  state = {steps: [], faces: null};
  /** Counts changes: what was made for an older version is stale. */
  version = 0;

  /** Puts the work on another picture in place. */
  turnTo(name) {
    if (this.#name !== null) this.#states.set(this.#name, {state: this.state, undo: this.#undo, redo: this.#redo});
    const kept = this.#states.get(name) ?? {state: {steps: [], faces: null}, undo: [], redo: []};
    this.#name = name;
    this.state = kept.state;
    this.#undo = kept.undo;
    this.#redo = kept.redo;
    this.#lastKey = null;
    this.#changed();
  }

  get canUndo() { return this.#undo.length > 0; }
  get canRedo() { return this.#redo.length > 0; }

  /** Changes a copy of the state. Changes of one key that follow quickly are one step of undo. */
  edit(change, key = null) {
    const now = performance.now();
    const merged = key !== null && key === this.#lastKey && now - this.#lastTime < kMergeWithin;
    if (!merged) {
      this.#undo.push(this.state);
      if (this.#undo.length > kMostUndo) this.#undo.shift();
    }
    this.#redo.length = 0;
    this.#lastKey = key;
    this.#lastTime = now;
    this.state = structuredClone(this.state);
    change(this.state);
    this.#changed();
  }

  undo() { this.#step(this.#undo, this.#redo); }
  redo() { this.#step(this.#redo, this.#undo); }

  newId() { return this.#nextId++; }
  step(id) { return this.state.steps.find((step) => step.id === id); }
  editStep(id, change, key = null) {
    this.edit((state) => change(state.steps.find((step) => step.id === id)), key && `${id}:${key}`);
  }

  #step(from, to) {
    if (!from.length) return;
    to.push(this.state);
    this.state = from.pop();
    this.#lastKey = null;
    this.#changed();
  }

  #changed() {
    this.version++;
    this.dispatchEvent(new Event('change'));
  }
}

/** The chain as the server takes it. */
export function chainOf(state) {
  const steps = state.steps.map(({effect, values, off, strength, mask, depth, second}) => {
    const step = {effect, values, off, strength};
    if (mask) step.mask = mask;
    if (depth) step.depth = depth;
    if (second) step.second = second;
    return step;
  });
  return {steps, faces: state.faces};
}
