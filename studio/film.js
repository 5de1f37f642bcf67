// The folder's pictures, and files that are dropped on the page.
import {ask, upload} from './api.js';
import {make, toast} from './dom.js';
import {say} from './strings.js';

const kLargestFile = 512 * 1024 * 1024;

export class Film {
  names = [];
  lookups = [];
  title = '';
  #frames = new Map();
  #loading = false;

  constructor(session, open) {
    this.session = session;
    this.open = open;
    this.element = document.getElementById('film');
    this.element.setAttribute('aria-label', say('pictures'));
    this.list = make('ul', {});
    this.file = make('input', {type: 'file', accept: 'image/*', hidden: true, multiple: true,
      onchange: () => this.take(this.file.files)});
    const choose = make('button', {type: 'button', className: 'drop', textContent: say('dropHere'),
      title: say('choose'), onclick: () => this.file.click()});
    this.element.append(this.list, choose, this.file);
    session.addEventListener('opened', () => this.mark());
    session.addEventListener('busy', () => this.mark());
    for (const what of ['dragover', 'drop'])
      window.addEventListener(what, (event) => {
        event.preventDefault();
        document.body.classList.toggle('dropping', what === 'dragover');
        if (what === 'drop') this.take(event.dataTransfer.files);
      });
    window.addEventListener('dragleave', () => document.body.classList.remove('dropping'));
  }

  async refresh() {
    const folder = await ask('api/folder');
    this.title = folder.name;
    this.lookups = folder.lookups;
    this.names = [...new Set([...folder.dropped, ...folder.pictures])];
    this.inFolder = folder.pictures;
    for (const name of this.names)
      if (!this.#frames.has(name)) this.#frames.set(name, this.#makeFrame(name));
    this.list.replaceChildren(...this.names.map((name) => this.#frames.get(name)));
    this.mark();
    this.#load();
  }

  forget(name) {
    this.#frames.delete(name);
  }

  #makeFrame(name) {
    const image = make('img', {alt: '', draggable: false});
    const frame = make('li', {}, make('button', {type: 'button', onclick: () => this.open(name), title: name,
      'aria-label': name}, image, make('span', {textContent: name})));
    frame.dataset.name = name;
    return frame;
  }

  /** One after the other: the worker has better to do. */
  async #load() {
    if (this.#loading) return;
    this.#loading = true;
    for (const frame of this.list.children) {
      const image = frame.querySelector('img');
      if (image.src || frame.classList.contains('broken')) continue;
      await new Promise((resolve) => {
        image.onload = resolve;
        image.onerror = () => {
          image.removeAttribute('src');
          frame.classList.add('broken');
          resolve();
        };
        image.src = `api/thumbnail?name=${encodeURIComponent(frame.dataset.name)}`;
      });
    }
    this.#loading = false;
  }

  mark() {
    const shown = this.session.opening ?? this.session.picture?.name;
    for (const frame of this.list.children) {
      const now = frame.dataset.name === shown;
      frame.classList.toggle('shown', now);
      frame.firstChild.setAttribute('aria-current', String(now));
      if (now) frame.scrollIntoView({block: 'nearest', inline: 'nearest'});
    }
  }

  step(by) {
    const at = this.names.indexOf(this.session.opening ?? this.session.picture?.name);
    const next = this.names[at + by];
    if (next !== undefined) this.open(next);
  }

  async take(files) {
    let last = null;
    for (const file of files) {
      if (file.size > kLargestFile) {
        toast(say('tooLarge', {name: file.name}), 'bad');
        continue;
      }
      try {
        last = (await upload(`api/upload?name=${encodeURIComponent(file.name)}`, file)).name;
        this.forget(last);
      } catch (error) {
        toast(error.message || say('lost'), 'bad');
      }
    }
    if (last === null) return;
    await this.refresh();
    this.open(last);
  }
}
