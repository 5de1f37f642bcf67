// Puts the page together.
import {announce, button, make, toast} from './dom.js';
import {MaskBrush, DepthBrush} from './brush.js';
import {showBatch, showHelp, showRecipes, showSave} from './dialogs.js';
import {Film} from './film.js';
import {DragTool, PointTool, SpotTool} from './gestures.js';
import {FaceTool} from './landmarks.js';
import {Panel} from './panel.js';
import {loadRegistry} from './registry.js';
import {Session} from './session.js';
import {Store} from './store.js';
import {say} from './strings.js';
import {View} from './view.js';

const store = new Store(), session = new Session(store), view = new View(session);
const film = new Film(session, (name) => session.open(name, view.screenSide));
const byId = (id) => document.getElementById(id);

// ---- Tools ----

let tool = null;

function setTool(next) {
  tool = next;
  view.setTool(next);
  showTools(true);
  panel.update();
  if (next) announce(next.hint);
}

/** The bar below the picture: what the tool in hand can be told. */
function showTools(anew) {
  view.draw();
  const bar = byId('tools');
  bar.hidden = !tool;
  if (!tool) return;
  if (anew) {
    bar.setAttribute('aria-label', tool.hint);
    const done = make('button', {type: 'button', className: 'main small', textContent: say('done'), title: 'Esc',
      onclick: () => setTool(null)});
    bar.replaceChildren(make('div', {className: 'told'}, make('span', {className: 'hint', textContent: tool.hint}), done),
      ...(tool.bar?.(showTools) ?? []));
  }
}

/** The same hand put down again lets go. */
function take(name, step, makeTool) {
  if (tool?.name === name && tool.step === step?.id) setTool(null);
  else setTool(makeTool());
}

async function takeDepth(step) {
  if (tool?.name === 'depth') {
    setTool(null);
    return;
  }
  try {
    announce(say('estimating'));
    const plane = session.plane(step.depth) ?? await session.depth();
    const brush = new DepthBrush(session, step, plane);
    brush.name = 'depth';
    setTool(brush);
  } catch (error) {
    toast(error.message || say('lost'), 'bad');
  }
}

const hands = {
  active: () => tool && {step: tool.step, name: tool.name},
  paint: (step) => take('paint', step, () => Object.assign(new MaskBrush(session, step), {name: 'paint'})),
  depth: takeDepth,
  pick: (step, parameter) => take('pick', step, () => new PointTool(session, step, parameter)),
  drag: (step) => take('drag', step, () => new DragTool(session, step, panel)),
  spot: (step) => take('spot', step, () => new SpotTool(session, step, panel))
};
const panel = new Panel(store, session, film, hands);

function takeFaces() {
  take('faces', null, () => {
    const faces = new FaceTool(session);
    faces.changed = () => showTools(true);
    faces.step = undefined;
    return faces;
  });
}

// ---- The bar ----

const undo = button('undo', say('undo'), () => store.undo(), {key: 'Ctrl Z'});
const redo = button('redo', say('redo'), () => store.redo(), {key: 'Ctrl Shift Z'});
const split = button('split', say('split'), () => view.setSplit(!view.split), {key: 'D'});
const before = button('before', say('before'), () => {}, {key: 'B'});
const loupe = button('loupe', say('loupe'), () => view.toggleLoupe(), {key: 'L'});
const zoom = make('button', {type: 'button', className: 'bare zoom', title: `${say('actual')} (1)`,
  onclick: () => view.actualSize()});
const faces = button('face', say('faces'), takeFaces, {labelled: true, key: 'F'});
const save = button('save', say('save'), () => showSave(session, film), {labelled: true, kind: 'main', key: 'Ctrl S'});
const batch = button('batch', say('batch'), () => showBatch(store, film), {labelled: true});
const recipes = button('recipes', say('recipes'), () => showRecipes(store), {labelled: true});
const theme = button('theme', say('theme'), () => {
  const dark = getComputedStyle(document.documentElement).getPropertyValue('color-scheme').trim() === 'dark';
  document.documentElement.dataset.theme = dark ? 'light' : 'dark';
});
const title = make('h1', {});
const shown = make('span', {className: 'shownName'});
const needPicture = [split, before, loupe, zoom, faces, save, batch, recipes];

for (const [what, held] of [['pointerdown', true], ['pointerup', false], ['pointerleave', false]])
  before.addEventListener(what, () => view.holdBefore(held));
before.addEventListener('keydown', (event) => { if (event.key === ' ' || event.key === 'Enter') view.holdBefore(true); });
before.addEventListener('keyup', () => view.holdBefore(false));

byId('bar').append(
  make('div', {className: 'group names'}, title, shown),
  make('div', {className: 'group'}, undo, redo),
  make('div', {className: 'group'}, split, before, loupe),
  make('div', {className: 'group'}, button('minus', say('zoomOut'), () => view.zoomBy(0.8), {key: '−'}), zoom,
    button('plus', say('zoomIn'), () => view.zoomBy(1.25), {key: '+'}),
    button('fit', say('fit'), () => view.fit(), {key: '0'})),
  make('div', {className: 'group'}, faces),
  make('div', {className: 'space'}),
  make('div', {className: 'group'}, recipes, batch, save),
  make('div', {className: 'group'}, theme, button('help', say('help'), showHelp, {key: '?'})));

function showBar() {
  const {picture} = session;
  title.textContent = film.title || say('product');
  shown.textContent = session.opening ? say('opening', {name: session.opening})
    : picture ? `${picture.name}  ·  ${say('pixels', picture)}` : '';
  document.title = picture ? `${picture.name} – ${say('product')}` : say('product');
  undo.disabled = !store.canUndo;
  redo.disabled = !store.canRedo;
  for (const element of needPicture) element.disabled = !picture;
  split.setAttribute('aria-pressed', String(view.split));
  before.setAttribute('aria-pressed', String(view.holdingBefore));
  loupe.setAttribute('aria-pressed', String(view.loupeShown));
  faces.setAttribute('aria-pressed', String(tool?.name === 'faces'));
  zoom.textContent = picture ? say('percent', {value: Math.round(view.scale * view.density * 100)}) : '–';
}

function showStatus() {
  const {picture} = session, words = [];
  if (session.opening) words.push(say('opening', {name: session.opening}));
  else if (session.working) words.push(say('working'));
  else if (view.partPending) words.push(say('fullSize'));
  else if (picture && store.state.steps.length) words.push(say('previewTime', {ms: Math.round(session.milliseconds)}));
  if (picture && session.found) {
    const count = session.faces.length;
    words.push(count === 0 ? say('noFace') : count === 1 ? say('oneFace') : say('faceCount', {count}));
  }
  const status = byId('status');
  status.classList.toggle('busy', Boolean(session.opening) || session.working || view.partPending);
  status.replaceChildren(...words.map((each) => make('span', {textContent: each})));
}

function showWelcome() {
  const welcome = byId('welcome');
  welcome.hidden = Boolean(session.picture || session.opening);
  welcome.textContent = film.names.length ? say('welcome') : say('emptyFolder');
}

function showAll() {
  showBar();
  showStatus();
  showWelcome();
}
for (const what of ['opened', 'preview', 'faces', 'busy']) session.addEventListener(what, showAll);
for (const what of ['moved', 'mode', 'part']) view.addEventListener(what, showAll);
store.addEventListener('change', showAll);
session.addEventListener('opened', () => {
  setTool(null);
  for (const note of session.picture.notes) toast(note);
});
session.addEventListener('faces', () => { if (tool?.name === 'faces') showTools(true); });
// A step that is gone takes its tool along; undo brings another mask.
store.addEventListener('change', () => {
  if (tool?.step !== undefined && !store.step(tool.step)) setTool(null);
  else view.draw();
  if (tool?.name === 'faces') showTools(true);
});
session.addEventListener('failure', ({detail: {name, error}}) => {
  const why = error.message || say('lost');
  toast(name ? say('cannotRead', {name, why}) : why, 'bad');
  showAll();
});

// ---- Keys ----

function isTyping(target) {
  return target.matches('input:not([type=range]):not([type=checkbox]), textarea, select');
}

const keys = {
  a: () => panel.showPicker(), d: () => view.setSplit(!view.split), l: () => view.toggleLoupe(), f: takeFaces,
  0: () => view.fit(), 1: () => view.actualSize(), '+': () => view.zoomBy(1.25), '=': () => view.zoomBy(1.25),
  '-': () => view.zoomBy(0.8), '?': showHelp, b: () => view.holdBefore(true),
  e: () => { if (tool?.toggleErase) { tool.toggleErase(); showTools(true); } },
  '[': () => { if (tool?.nudgeSize) { tool.nudgeSize(-1); showTools(true); } },
  ']': () => { if (tool?.nudgeSize) { tool.nudgeSize(1); showTools(true); } },
  ',': () => { tool?.select?.(-1); view.draw(); }, '.': () => { tool?.select?.(1); view.draw(); },
  escape: () => setTool(null), pageup: () => film.step(-1), pagedown: () => film.step(1)
};

function controlKey(key, shift) {
  if (key === 'z') return shift ? store.redo() : store.undo();
  if (key === 'y') return store.redo();
  if (key === 's' && session.picture) return showSave(session, film);
  return undefined;
}

document.addEventListener('keydown', (event) => {
  if (document.querySelector('dialog[open]')) return;
  const key = event.key.toLowerCase();
  if (event.ctrlKey || event.metaKey) {
    if (!'zys'.includes(key) || (isTyping(event.target) && key !== 's')) return;
    event.preventDefault();
    controlKey(key, event.shiftKey);
    return;
  }
  if (isTyping(event.target)) return;
  const step = panel.focused();
  if (step !== null && event.altKey && (key === 'arrowup' || key === 'arrowdown')) {
    event.preventDefault();
    panel.moveBy(step, key === 'arrowup' ? -1 : 1);
    return;
  }
  if (step !== null && key === 'delete') {
    panel.remove(step);
    return;
  }
  if (event.altKey) return;
  if (event.target === view.element) {
    if (view.split && event.shiftKey && !tool && (key === 'arrowleft' || key === 'arrowright')) {
      event.preventDefault();
      view.moveDivider(key === 'arrowleft' ? -0.02 : 0.02);
      return;
    }
    if (view.key(event)) {
      event.preventDefault();
      return;
    }
  }
  if (key === ' ' && (event.target === document.body || event.target === view.element)) {
    event.preventDefault();
    view.holdSpace(true);
    return;
  }
  if (keys[key] && session.picture || key === '?') {
    event.preventDefault();
    keys[key]();
  }
});
document.addEventListener('keyup', (event) => {
  if (event.key.toLowerCase() === 'b') view.holdBefore(false);
  if (event.key === ' ') view.holdSpace(false);
});

view.element.setAttribute('aria-label', say('viewLabel'));
try {
  await loadRegistry();
  await film.refresh();
} catch (error) {
  toast(error.message || say('lost'), 'bad');
}
showAll();
if (film.names.length === 1) session.open(film.names[0], view.screenSide);
