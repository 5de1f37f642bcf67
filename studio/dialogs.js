// Saving, the whole folder, recipes, and the keys.
import {ask, tell} from './api.js';
import {make, toast} from './dom.js';
import {say, text} from './strings.js';
import {chainOf} from './store.js';

const kPoll = 300;  // milliseconds

/** A dialog with a title, contents, and buttons at its end; it goes when it is closed. */
function open(title, contents, ...buttons) {
  const close = make('button', {type: 'button', textContent: say('cancel'), onclick: () => dialog.close()});
  const form = make('form', {method: 'dialog'}, make('h2', {textContent: title}), ...contents,
    make('div', {className: 'ends'}, close, ...buttons));
  const dialog = make('dialog', {'aria-label': title}, form);
  dialog.addEventListener('close', () => dialog.remove());
  document.body.append(dialog);
  dialog.showModal();
  if (!form.querySelector('input[type=text]')) close.focus();
  return {dialog, form, close};
}

function field(words, input) {
  return make('label', {className: 'line'}, make('span', {textContent: words}), input);
}

function check(words, input) {
  return make('label', {className: 'check'}, input, make('span', {textContent: words}));
}

function bar() {
  const fill = make('progress', {max: 1, value: 0});
  const words = make('span', {className: 'hint'});
  return {row: make('div', {className: 'progress', hidden: true}, fill, words), fill, words};
}

/** "portrait-studio.jpg": what is saved keeps the format where the command writes it. */
function proposal(name, taken) {
  const dot = name.lastIndexOf('.'), stem = dot > 0 ? name.slice(0, dot) : name;
  const suffix = /\.(jpe?g|png|tiff?|webp|avif)$/i.test(name) ? name.slice(dot) : '.png';
  for (let i = 1; ; i++) {
    const made = `${stem}-retouched${i > 1 ? `-${i}` : ''}${suffix}`;
    if (!taken.includes(made)) return made;
  }
}

export function showSave(session, film) {
  const {picture, store} = session;
  const name = make('input', {type: 'text', value: proposal(picture.name, film.names), required: true,
    spellcheck: false, autocomplete: 'off'});
  const replace = make('input', {type: 'checkbox'});
  const replacing = check(say('replace'), replace);
  const wrong = make('p', {className: 'note bad', hidden: true, role: 'alert'});
  const progress = bar();
  const waiting = session.current ? session.reports.filter((report) => report.state === 'waiting').length : 0;
  const save = make('button', {type: 'submit', className: 'main', textContent: say('save')});
  const size = say('pixels', {width: picture.width, height: picture.height});
  const {dialog, form} = open(say('saveTitle'), [
    field(say('fileName'), name), replacing,
    make('p', {className: 'hint', textContent: say('saveNote', {size})}),
    waiting ? make('p', {className: 'hint', textContent: say('steps', {count: waiting})}) : null,
    wrong, progress.row].filter((row) => row), save);
  const look = () => { replacing.hidden = !film.names.includes(name.value); };
  name.addEventListener('input', look);
  look();
  name.setSelectionRange(0, name.value.lastIndexOf('.'));
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    wrong.hidden = true;
    save.disabled = true;
    progress.row.hidden = false;
    const timer = setInterval(async () => {
      const state = await ask('api/progress').catch(() => null);
      if (!state) return;
      progress.fill.value = state.fraction;
      progress.words.textContent = state.stage || say('saving');
    }, kPoll);
    try {
      const done = await session.save(name.value, replace.checked && !replacing.hidden);
      dialog.close();
      if (done) toast([say('saved', {name: done.name}), ...done.notes].join('. '));
      film.forget(name.value);
      await film.refresh();
    } catch (error) {
      wrong.hidden = false;
      wrong.textContent = error.message || say('lost');
      replacing.hidden = error.status !== 409;
    } finally {
      clearInterval(timer);
      save.disabled = false;
      progress.row.hidden = true;
    }
  });
}

export function showBatch(store, film) {
  if (!store.state.steps.length) {
    toast(say('batchEmpty'));
    return;
  }
  const folder = make('input', {type: 'text', value: 'retouched', required: true, spellcheck: false});
  const replace = make('input', {type: 'checkbox'});
  const boxes = film.inFolder.map((name) => make('input', {type: 'checkbox', checked: true, value: name}));
  const all = make('input', {type: 'checkbox', checked: true});
  const count = () => boxes.filter((box) => box.checked).length;
  const list = make('div', {className: 'names', role: 'group', 'aria-label': say('choosePictures')},
    ...boxes.map((box) => check(box.value, box)));
  const wrong = make('p', {className: 'note bad', hidden: true, role: 'alert'});
  const summary = make('p', {className: 'hint', hidden: true});
  const faults = make('ul', {className: 'faults'});
  const progress = bar();
  const start = make('button', {type: 'submit', className: 'main', textContent: say('batchStart')});
  const {dialog, form, close} = open(say('batchTitle'), [
    make('p', {className: 'hint', textContent: say('batchText')}), field(say('batchFolder'), folder),
    check(say('batchAll', {count: boxes.length}), all), list, check(say('batchReplace'), replace), wrong, progress.row,
    summary, faults], start);
  const look = () => {
    const chosen = count();
    all.checked = chosen === boxes.length;
    all.indeterminate = chosen > 0 && chosen < boxes.length;
    start.disabled = chosen === 0;
  };
  all.addEventListener('change', () => {
    for (const box of boxes) box.checked = all.checked;
    look();
  });
  list.addEventListener('change', look);
  let running = false;
  const follow = async () => {
    running = true;
    start.textContent = say('batchStop');
    progress.row.hidden = false;
    let state = null;
    try {
      while (dialog.isConnected) {
        state = await ask('api/batch');
        const done = state.done + state.skipped + state.faults.length;
        progress.fill.value = done / Math.max(1, state.total);
        progress.words.textContent = `${say('batchState', {done, total: state.total})}  ${state.current}`;
        faults.replaceChildren(...state.faults.map(({name, why}) => make('li', {textContent: `${name}: ${why}`})));
        if (!state.running) break;
        await new Promise((resolve) => setTimeout(resolve, kPoll));
      }
      if (state && !state.running) {
        const words = [say('batchDone', {done: state.done, folder: state.folder})];
        if (state.skipped) words.push(say('batchSkipped', {count: state.skipped}));
        if (state.faults.length) words.push(say('batchFailed', {count: state.faults.length}));
        if (state.left.length) words.push(say('batchLeft', {titles: state.left.join(', ')}));
        summary.hidden = false;
        summary.textContent = words.join('. ');
        close.textContent = say('close');
      }
    } catch (error) {
      wrong.hidden = false;
      wrong.textContent = error.message || say('lost');
    }
    running = false;
    start.textContent = say('batchStart');
    progress.row.hidden = true;
  };
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    if (running) {
      await tell('api/batch/cancel', {});
      return;
    }
    wrong.hidden = summary.hidden = true;
    try {
      await tell('api/batch', {chain: chainOf(store.state), folder: folder.value, replace: replace.checked,
        names: boxes.filter((box) => box.checked).map((box) => box.value)});
      await follow();
    } catch (error) {
      wrong.hidden = false;
      wrong.textContent = error.message || say('lost');
    }
  });
  // One that was left to itself.
  ask('api/batch').then((state) => { if (state.running) follow(); }).catch(() => {});
}

export function showRecipes(store) {
  const list = make('div', {className: 'names tall'});
  const name = make('input', {type: 'text', placeholder: say('recipeName'), spellcheck: false,
    'aria-label': say('recipeName')});
  const save = make('button', {type: 'submit', className: 'main', textContent: say('recipeSave'),
    disabled: !store.state.steps.length});
  const wrong = make('p', {className: 'note bad', hidden: true, role: 'alert'});
  const {dialog, form, close} = open(say('recipesTitle'), [
    make('p', {className: 'hint', textContent: say('recipeText')}), list, field(say('recipeName'), name), wrong], save);
  close.textContent = say('close');
  const fail = (error) => {
    wrong.hidden = false;
    wrong.textContent = error.message || say('lost');
  };
  const load = async (file) => {
    try {
      const recipe = await ask(`api/recipe?name=${encodeURIComponent(file)}`);
      store.edit((state) => {
        state.steps = recipe.steps.map((step) => ({id: store.newId(), effect: step.effect, values: step.values,
          off: step.off ?? false, strength: step.strength ?? 1, mask: '', depth: '', second: ''}));
      });
      dialog.close();
      toast(say('recipeLoaded', {name: file}));
    } catch (error) {
      fail(error);
    }
  };
  const refresh = async () => {
    const {recipes} = await ask('api/folder');
    list.replaceChildren(...recipes.map((file) => make('button', {type: 'button', className: 'entry',
      textContent: file, onclick: () => load(file)})));
    if (!recipes.length) list.append(make('p', {className: 'hint', textContent: say('noRecipes')}));
  };
  refresh().catch(fail);
  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    if (!name.value) return;
    wrong.hidden = true;
    try {
      const saved = await tell('api/recipe', {name: name.value, chain: chainOf(store.state)});
      toast([say('recipeSaved', {name: saved.name}), ...saved.notes].join('. '));
      name.value = '';
      await refresh();
    } catch (error) {
      fail(error);
    }
  });
}

export function showHelp() {
  const rows = text.keys.map(([keys, words]) => make('tr', {}, make('th', {textContent: keys, scope: 'row'}),
    make('td', {textContent: words})));
  const {close} = open(say('helpTitle'), [make('div', {className: 'names tall'}, make('table', {},
    make('tbody', {}, ...rows))), make('p', {className: 'hint', textContent: say('keysMouse')})]);
  close.textContent = say('close');
}
