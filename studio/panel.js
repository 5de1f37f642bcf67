// The chain: its steps as cards, in the order in which they run.
import {announce, button, icon, make} from './dom.js';
import {chooser, controlFor, slider} from './controls.js';
import {allEffects, effectOf, gestureOf} from './registry.js';
import {say} from './strings.js';

/** Parameters of a gesture are set by hand; their numbers stand at the end. */
function parametersOf(effect) {
  const names = gestureOf(effect)?.names ?? [];
  const plain = effect.parameters.filter((parameter) => !names.includes(parameter.name));
  return {
    front: plain.filter((parameter) => !parameter.advanced),
    back: [...plain.filter((parameter) => parameter.advanced),
      ...effect.parameters.filter((parameter) => names.includes(parameter.name))]};
}

export class Panel {
  #cards = new Map();
  #open = null;       // the step whose settings show
  #dragged = null;

  /** @param hands {paint(step), depth(step), pick(step, parameter), drag(step), spot(step), active() -> {step, name}} */
  constructor(store, session, folder, hands) {
    Object.assign(this, {store, session, folder, hands});
    this.element = document.getElementById('panel');
    this.element.setAttribute('aria-label', say('effects'));
    this.list = make('ol', {className: 'chain'});
    this.empty = make('p', {className: 'hint', textContent: say('emptyChain')});
    this.addButton = button('plus', say('add'), () => this.showPicker(), {labelled: true, kind: 'wide', key: 'A'});
    this.clearButton = make('button', {type: 'button', className: 'quiet', textContent: say('clearAll'),
      onclick: () => store.edit((state) => { state.steps = []; })});
    this.element.append(
      make('div', {className: 'head'}, make('h2', {textContent: say('effects')}), this.clearButton),
      make('div', {className: 'scroll'}, this.empty, this.list, this.addButton));
    store.addEventListener('change', () => this.update());
    session.addEventListener('preview', () => this.update());
    session.addEventListener('faces', () => this.update());
    this.update();
  }

  get openStep() { return this.store.step(this.#open) ?? null; }

  add(name) {
    const effect = effectOf(name), id = this.store.newId();
    this.#open = id;
    this.store.edit((state) => {
      state.steps.push({id, effect: name, values: {}, off: false, strength: 1, mask: '', depth: '', second: ''});
    });
    announce(say('added', {title: effect.title}));
    const card = this.#cards.get(id);
    card.element.scrollIntoView({block: 'nearest'});
    card.toggle.focus();
    const gesture = gestureOf(effect);
    if (gesture) this.hands[gesture.kind](this.store.step(id));
    else if (effect.mask === 'required') this.hands.paint(this.store.step(id));
  }

  /** Shows the settings of this step. */
  turnTo(id) {
    this.#open = id;
    this.update();
  }

  remove(id) {
    const {effect} = this.store.step(id);
    const at = this.store.state.steps.findIndex((step) => step.id === id);
    this.store.edit((state) => { state.steps = state.steps.filter((step) => step.id !== id); });
    announce(say('removed', {title: effectOf(effect).title}));
    const next = this.store.state.steps[Math.min(at, this.store.state.steps.length - 1)];
    (next ? this.#cards.get(next.id).toggle : this.addButton).focus();
  }

  move(id, to) {
    const {steps} = this.store.state, from = steps.findIndex((step) => step.id === id);
    if (from < 0 || to < 0 || to >= steps.length || to === from) return;
    this.store.edit((state) => state.steps.splice(to, 0, ...state.steps.splice(from, 1)));
    announce(say('movedTo', {title: effectOf(steps[from].effect).title, position: to + 1, count: steps.length}));
  }

  moveBy(id, by) {
    const at = this.store.state.steps.findIndex((step) => step.id === id);
    this.move(id, at + by);
    this.#cards.get(id)?.toggle.focus();
  }

  /** The step whose card holds the focus. */
  focused() {
    const card = document.activeElement?.closest('.card');
    return card ? Number(card.dataset.step) : null;
  }

  update() {
    const {steps} = this.store.state;
    for (const [id, card] of this.#cards)
      if (!steps.some((step) => step.id === id)) {
        card.element.remove();
        this.#cards.delete(id);
      }
    steps.forEach((step, index) => {
      if (!this.#cards.has(step.id)) this.#cards.set(step.id, this.#makeCard(step));
      const {element} = this.#cards.get(step.id);
      if (this.list.children[index] !== element) this.list.insertBefore(element, this.list.children[index] ?? null);
    });
    steps.forEach((step, index) => this.#cards.get(step.id).follow(step, index));
    this.empty.hidden = steps.length > 0 || !this.session.picture;
    this.addButton.disabled = !this.session.picture;
    this.clearButton.hidden = steps.length === 0;
  }

  #report(index) {
    return this.session.current ? this.session.reports[index] : null;
  }

  /** What the step waits for, or what went wrong. */
  #message(step, effect, report) {
    if (!report || step.off) return null;
    if (report.state === 'failed') return {bad: true, words: report.why};
    if (report.state !== 'waiting') return report.why ? {bad: false, words: report.why} : null;
    if (report.why === 'mask') return {bad: false, words: say('waitMask')};
    if (report.why === 'second') return {bad: false, words: say('waitSecond')};
    const kind = gestureOf(effect)?.kind;
    return {bad: false, words: kind === 'drag' ? say('waitDrag') : kind === 'spot' ? say('waitSpot')
      : say('waitValue', {name: report.why})};
  }

  #makeCard(first) {
    const {id} = first, effect = effectOf(first.effect), {store} = this;
    const set = (name) => (value) => store.editStep(id, (step) => { step.values[name] = value; }, name);
    const power = button('on', '', () => {
      const {off} = store.step(id);
      store.editStep(id, (step) => { step.off = !off; });
      announce(say(off ? 'stepOn' : 'stepOff', {title: effect.title}));
    }, {kind: 'power'});
    const toggle = make('button', {type: 'button', className: 'title', onclick: () => {
      this.#open = this.#open === id ? null : id;
      this.update();
    }, 'aria-label': say('details', {title: effect.title}), title: effect.summary},
    make('span', {textContent: effect.title}), icon('open'));
    const grip = make('span', {className: 'grip', title: say('move', {title: effect.title}), 'aria-hidden': 'true'},
      icon('grip'));
    const note = make('p', {className: 'note', hidden: true});
    const strength = slider({label: say('blend'), unit: '%', minimum: 0, maximum: 100, step: 1, whole: true,
      fallback: 100, onvalue: (value) => store.editStep(id, (step) => { step.strength = value / 100; }, 'strength')});
    const rows = [];
    const context = {session: this.session, lookups: () => this.folder.lookups,
      pick: (parameter) => this.hands.pick(store.step(id), parameter)};
    const rowsFor = (parameters) => parameters.map((parameter) => {
      const row = controlFor(parameter, context, set(parameter.name));
      rows.push(row);
      const help = make('p', {className: 'explained', textContent: parameter.help});
      return make('div', {className: 'setting'}, row, help);
    });
    const {front, back} = parametersOf(effect);
    const body = make('div', {className: 'body'}, ...this.#handRows(id, effect, rows), ...rowsFor(front));
    if (back.length)
      body.append(make('details', {}, make('summary', {textContent: gestureOf(effect) ? say('numbers')
        : say('advanced')}), ...rowsFor(back)));
    const explain = make('button', {type: 'button', className: 'small', textContent: say('explain'), onclick: () => {
      explain.setAttribute('aria-pressed', String(body.classList.toggle('explaining')));
    }, 'aria-pressed': 'false'});
    const defaults = make('button', {type: 'button', className: 'small', textContent: say('reset'), onclick: () =>
      store.editStep(id, (step) => {
        const kept = gestureOf(effect)?.names ?? [];
        step.values = Object.fromEntries(Object.entries(step.values).filter(([name]) => kept.includes(name)));
        step.strength = 1;
      })});
    body.append(strength, make('div', {className: 'row buttons'}, explain, defaults));
    const element = make('li', {className: 'card'},
      make('div', {className: 'cardHead'}, grip, power, toggle,
        button('remove', say('remove', {title: effect.title}), () => this.remove(id))), note, body);
    element.dataset.step = id;
    this.#makeDraggable(element, grip, id);
    return {element, toggle, follow: (step, index) => {
      const open = this.#open === id, report = this.#report(index);
      const message = this.#message(step, effect, report);
      element.classList.toggle('off', step.off);
      element.classList.toggle('open', open);
      body.hidden = !open;
      toggle.setAttribute('aria-expanded', String(open));
      power.setAttribute('aria-pressed', String(!step.off));
      power.setAttribute('aria-label', say(step.off ? 'switchOn' : 'switchOff', {title: effect.title}));
      power.title = power.getAttribute('aria-label');
      note.hidden = !message;
      note.textContent = message?.words ?? '';
      note.classList.toggle('bad', message?.bad ?? false);
      if (!open) return;
      strength.show(Math.round(step.strength * 100));
      for (const row of rows) row.follow(step);
    }};
  }

  /** Rows for what is set by hand: masks, depth, a second picture, gestures. */
  #handRows(id, effect, rows) {
    const {store, hands} = this, made = [];
    const step = () => store.step(id);
    const add = (row, follow) => {
      row.follow = follow;
      rows.push(row);
      made.push(row);
    };
    const handButton = (words, name, onclick) => {
      const element = make('button', {type: 'button', className: 'small grow', textContent: words, onclick});
      element.follow = () => {
        const active = hands.active();
        element.setAttribute('aria-pressed', String(active?.step === id && active.name === name));
      };
      return element;
    };
    const group = (label, ...buttons) => make('div', {className: 'row field', role: 'group', 'aria-label': label},
      make('span', {className: 'name', textContent: label}), ...buttons);
    const gesture = gestureOf(effect);
    if (gesture) {
      const element = handButton(say(gesture.kind), gesture.kind, () => hands[gesture.kind](step()));
      add(make('div', {className: 'row'}, element), element.follow);
    }
    if (effect.mask !== 'no') {
      const paint = handButton(say('paint'), 'paint', () => hands.paint(step()));
      const clear = make('button', {type: 'button', className: 'small', textContent: say('clear'),
        onclick: () => store.editStep(id, (changed) => { changed.mask = ''; })});
      add(group(say('mask'), paint, clear), (now) => {
        paint.follow();
        clear.disabled = !now.mask;
      });
    }
    if (effect.depth !== 'no') {
      const push = handButton(say('pushDepth'), 'depth', () => hands.depth(step()));
      const reset = make('button', {type: 'button', className: 'small', textContent: say('resetDepth'),
        onclick: () => store.editStep(id, (changed) => { changed.depth = ''; })});
      add(group(say('depth'), push, reset), (now) => {
        push.follow();
        reset.disabled = !now.depth;
      });
    }
    if (effect.second !== 'no') {
      const row = chooser({title: say('second'), help: ''}, [], (value) =>
        store.editStep(id, (changed) => { changed.second = value; }));
      const {show} = row;
      add(row, (now) => {
        row.fill([['', say('none')], ...this.folder.names.map((name) => [name, name])]);
        show(now.second);
      });
    }
    return made;
  }

  /** By the grip, with mouse or finger. */
  #makeDraggable(element, grip, id) {
    grip.addEventListener('pointerdown', (event) => {
      event.preventDefault();
      grip.setPointerCapture(event.pointerId);
      this.#dragged = id;
      element.classList.add('dragged');
    });
    grip.addEventListener('pointermove', (event) => {
      if (this.#dragged !== id) return;
      const others = [...this.list.children].filter((child) => child !== element);
      const after = others.filter((child) => {
        const box = child.querySelector('.cardHead').getBoundingClientRect();
        return box.top + box.height / 2 < event.clientY;
      }).length;
      if (this.list.children[after] !== element)
        this.list.insertBefore(element, after >= others.length ? null : others[after]);
    });
    const drop = () => {
      if (this.#dragged !== id) return;
      this.#dragged = null;
      element.classList.remove('dragged');
      this.move(id, [...this.list.children].indexOf(element));
    };
    grip.addEventListener('pointerup', drop);
    grip.addEventListener('pointercancel', drop);
  }

  // ---- Adding ----

  showPicker() {
    if (this.addButton.disabled) return;
    const search = make('input', {type: 'search', placeholder: say('search'), 'aria-label': say('search'),
      role: 'combobox', 'aria-expanded': 'true', 'aria-controls': 'effectList'});
    const list = make('div', {id: 'effectList', className: 'effectList', role: 'listbox', 'aria-label': say('effects')});
    const dialog = make('dialog', {className: 'picker', 'aria-label': say('add')}, search, list);
    let at = 0, shown = [];
    const mark = () => [...list.children].forEach((child, i) => {
      child.setAttribute('aria-selected', String(i === at));
      if (i === at) {
        child.scrollIntoView({block: 'nearest'});
        search.setAttribute('aria-activedescendant', child.id);
      }
    });
    const choose = (effect) => {
      dialog.close();
      if (effect) this.add(effect.name);
    };
    const fill = () => {
      const words = search.value.toLowerCase().split(/\s+/);
      shown = allEffects().filter((effect) =>
        words.every((word) => `${effect.title} ${effect.summary} ${effect.name}`.toLowerCase().includes(word)));
      at = 0;
      list.replaceChildren(...shown.map((effect) => make('div', {id: `choose-${effect.name}`, role: 'option',
        onclick: () => choose(effect)}, make('b', {textContent: effect.title}),
      make('span', {textContent: effect.summary}))));
      if (!shown.length) list.append(make('p', {className: 'hint', textContent: say('nothingFound')}));
      mark();
    };
    search.addEventListener('input', fill);
    search.addEventListener('keydown', (event) => {
      const by = {ArrowDown: 1, ArrowUp: -1}[event.key];
      if (by) {
        event.preventDefault();
        at = (at + by + shown.length) % Math.max(1, shown.length);
        mark();
      } else if (event.key === 'Enter') {
        event.preventDefault();
        choose(shown[at]);
      }
    });
    dialog.addEventListener('click', (event) => { if (event.target === dialog) dialog.close(); });
    dialog.addEventListener('close', () => dialog.remove());
    document.body.append(dialog);
    fill();
    dialog.showModal();
  }
}
