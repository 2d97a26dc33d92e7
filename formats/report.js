'use strict';
// Shows the events that the page holds in its data blocks, as formats/ReportChunk.h describes them.
// Texts come from records that anybody may have written: they reach the page as text alone.

const get = id => document.getElementById(id);

function make(tag, attributes = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes))
    if (typeof value === 'function') node.addEventListener(name, value);
    else if (value !== undefined) node.setAttribute(name, value);
  node.append(...children);
  return node;
}

const SIGNS = [[1, '~', 'layout assumed'], [2, '!', 'bytes short'], [4, '+', 'bytes unread'],
  [8, '?', 'unknown code']];
const SEVERITIES = ['of unknown severity', 'informational', 'warning', 'error'];
const isNarrow = matchMedia('(max-width: 800px)');
const counted = (count, one, many = one + 's') =>
  `${count.toLocaleString('en')} ${count === 1 ? one : many}`;

// The one place that knows what a time looks like: the number as the firmware counts it, or what that
// means in UTC or in the zone of whoever made the page.
function showTime(time) {
  const seconds = time + (facts.epoch ?? NaN);
  const offset = facts.zone?.findLast(([from]) => from <= seconds)?.[1] ?? 0;
  const date = new Date((seconds + offset) * 1000);
  if (isNaN(date)) return String(time);
  const minutes = Math.abs(offset) / 60;
  const pair = number => String(number).padStart(2, '0');
  const zone = offset === 0 ? 'Z'
    : `${offset < 0 ? '-' : '+'}${pair(Math.floor(minutes / 60))}:${pair(minutes % 60)}`;
  return date.toISOString().replace(/\.000Z$/, zone);
}
function showSpan(first, last) {
  return first === last ? showTime(first) : `${showTime(first)} to ${showTime(last)}`;
}

// ---- the data -----------------------------------------------------------------------------------

let facts;
const chunks = []; // {first, count, summaries, objects: lines of JSON, bodies: the block}
const events = {}; // a number of each event, by column
const names = { type: [], source: [], title: [], controller: [] }; // what these numbers mean

async function unpack(block) {
  const text = atob(block.textContent);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i)
    bytes[i] = text.charCodeAt(i);
  if (block.type !== 'application/gzip')
    return new TextDecoder().decode(bytes);
  const stream = new DecompressionStream('gzip');
  const writer = stream.writable.getWriter();
  writer.write(bytes).catch(() => {}); // the reader tells
  writer.close().catch(() => {});
  return new Response(stream.readable).text();
}

async function load() {
  const blocks = kind => document.querySelectorAll(`script[data-holds=${kind}]`);
  facts = JSON.parse(await unpack(blocks('facts')[0]));
  for (const name of ['sequence', 'time', 'type', 'source', 'title', 'controller'])
    events[name] = new Uint32Array(facts.events);
  for (const name of ['summary', 'objects'])
    events[name] = new Uint16Array(facts.events); // in the chunk
  events.signs = new Uint8Array(facts.events);
  const bodies = blocks('bodies');
  const known = {};
  for (const name in names)
    known[name] = new Map();
  let first = 0;
  for (const block of blocks('rows')) {
    const [numbers, summaries, objects] = (await unpack(block)).split('\n\n');
    const rows = JSON.parse(numbers);
    block.remove();
    const count = rows.signs.length;
    for (const name of ['sequence', 'time']) {
      const [column, steps] = [events[name], rows[name]];
      for (let i = 0, value = 0; i < count; ++i)
        column[first + i] = value += steps[i];
    }
    events.signs.set(rows.signs, first);
    events.summary.set(rows.summary, first);
    events.objects.set(rows.objects, first);
    for (const name in names) {
      const meant = rows[name].texts.map(text => {
        const key = JSON.stringify(text);
        if (!known[name].has(key))
          known[name].set(key, names[name].push(text) - 1);
        return known[name].get(key);
      });
      const column = events[name];
      const of = rows[name].of;
      for (let i = 0; i < count; ++i)
        column[first + i] = meant[of[i]];
    }
    chunks.push({ first, count, summaries, objects, bodies: bodies[chunks.length] });
    first += count;
  }
}

function chunkOf(event) {
  let low = 0;
  for (let high = chunks.length - 1; low < high;) {
    const middle = (low + high + 1) >> 1;
    if (chunks[middle].first <= event) low = middle;
    else high = middle - 1;
  }
  return chunks[low];
}
const severityOf = event => names.type[events.type[event]][1];
// A million strings take more memory than the text that they are parts of: it is split where it is
// looked at.
const split = [];
function lineOf(event, name) {
  const chunk = chunkOf(event);
  let found = split.find(one => one.chunk === chunk && one.name === name);
  if (!found) {
    found = { chunk, name, lines: chunk[name].split('\n') };
    split.unshift(found);
    split.length = Math.min(split.length, 8);
  }
  return JSON.parse(found.lines[events[name === 'summaries' ? 'summary' : name][event]]);
}
const summaryOf = event => lineOf(event, 'summaries');
const objectsOf = event => lineOf(event, 'objects');
const objectName = ([kind, id]) => facts.kinds[kind][0] + (id === '' ? '' : ' ' + id);
const controllerName = ([enclosure, controller, slot, log]) =>
  `${controller || 'controller without a serial number'}, slot ${slot}, log ${log}` +
  (enclosure ? `, enclosure ${enclosure}` : '');

const opened = []; // chunks whose bodies are unpacked, the last one first
async function bodiesOf(chunk) {
  const found = opened.findIndex(one => one.chunk === chunk);
  if (found < 0) {
    opened.unshift({ chunk, data: JSON.parse(await unpack(chunk.bodies)) });
    opened.length = Math.min(opened.length, 2);
  } else {
    opened.unshift(...opened.splice(found, 1));
  }
  return opened[0].data;
}

// Where a rule has a printf() format, the number from the payload.
function fill(item, payload) {
  const parts = item.parts ??= item[3].split(/%0?(\d*)([uXx])/); // text, width, letter, text ..
  let text = parts[0];
  for (let i = 1, at = 4; i < parts.length; i += 3, at += 3) {
    const bytes = payload.slice(2 * item[at], 2 * (item[at] + item[at + 1]));
    const value = bytes.length <= 12 ? parseInt(bytes, 16) : BigInt('0x' + bytes);
    const digits = value.toString(parts[i + 1] === 'u' ? 10 : 16);
    text += (parts[i + 1] === 'X' ? digits.toUpperCase() : digits).padStart(Number(parts[i]), '0');
    text += parts[i + 2];
  }
  return text;
}

// The items of a body, [type, name, layout, rule, ranges.., value].
const TEXT = 0, ELEMENT = 1, GROUP = 2, END = 3;
function itemsOf(data, body) {
  let next = 5;
  return data.forms[body[0]].map(item => ({
    type: item[0], name: item[1], layout: item[2], ranges: item.slice(4),
    value: item[0] > ELEMENT ? '' : item[3] ? fill(item, body[4]) : body[next++] }));
}

// ---- what is wanted -----------------------------------------------------------------------------

const NOTHING = { text: '', inBodies: false, severity: 0, signs: '', source: -1, title: -1,
  controller: -1, object: null, span: null };
let wanted = { ...NOTHING };
let shown = new Uint32Array(0); // events that pass, in order
let bodyHits = null;            // of the search in bodies: {text, hit: by event}
let search = 0;                 // running number of the search in bodies

const sameObject = (a, b) => a && b && ['kind', 'id', 'enclosure', 'controller'].every(
  name => a[name] === b[name]);

// Sets filters, or clears those that are set so already.
function toggle(name, value) {
  const same = name === 'object' ? sameObject(wanted.object, value) : wanted[name] === value;
  change({ [name]: same ? NOTHING[name] : value });
}

function change(changes) {
  Object.assign(wanted, changes);
  applyFilters();
  if (wanted.inBodies && wanted.text && bodyHits?.text !== wanted.text.toLowerCase())
    searchBodies(wanted.text.toLowerCase());
}

function applyFilters() {
  const text = wanted.text.toLowerCase();
  const number = /^\d+$/.test(text) ? Number(text) : -1;
  const hit = text && wanted.inBodies && bodyHits?.text === text ? bodyHits.hit : null;
  const titles = names.title.map(title => title.toLowerCase().includes(text));
  const severe = names.type.map(type => type[1] >= wanted.severity);
  const severities = names.type.map(type => type[1]);
  const { type: types, source: sources, title: titleOf, controller: controllerOf, time: times } =
    events;
  const { object, source, title } = wanted;
  const controllers = names.controller.map(([enclosure, controller], i) =>
    (wanted.controller < 0 || wanted.controller === i) && (!object ||
      (object.enclosure === enclosure &&
        (!object.controller || object.controller === controller))));
  const signs = wanted.signs === '' ? 0 : Number(wanted.signs);
  const [from, to] = wanted.span ?? [0, 0xFFFFFFFF];
  const found = new Uint32Array(events.time.length);
  let count = 0;
  axis.clear();
  for (const chunk of chunks) {
    const summaries = text && chunk.summaries.toLowerCase().split('\n').map(line =>
      (line.includes('\\') ? JSON.parse(line) : line.slice(1, -1)).includes(text));
    const objects = object && chunk.objects.split('\n').map(line => JSON.parse(line).some(
      ([kind, id]) => kind === object.kind && id === object.id));
    const end = chunk.first + chunk.count;
    for (let i = chunk.first; i < end; ++i) {
      if (!severe[types[i]] || !controllers[controllerOf[i]] ||
          (source >= 0 && sources[i] !== source) ||
          (title >= 0 && titleOf[i] !== title) ||
          (signs > 0 ? !(events.signs[i] & signs) : signs < 0 && events.signs[i] & 1) ||
          (object && !objects[events.objects[i]]) ||
          (text && !titles[titleOf[i]] && !summaries[events.summary[i]] &&
            events.sequence[i] !== number && !(hit && hit[i])))
        continue;
      const time = times[i];
      axis.add(time, severities[types[i]]);
      if (time >= from && time <= to)
        found[count++] = i;
    }
  }
  shown = found.slice(0, count);
  axis.draw();
  showFilters();
  list.reset();
}

async function searchBodies(text) {
  const mine = ++search;
  const hit = new Uint8Array(events.time.length);
  for (const [i, chunk] of chunks.entries()) {
    get('count').value = `searching bodies, ${Math.floor(100 * i / chunks.length)} % …`;
    const data = JSON.parse(await unpack(chunk.bodies));
    // No more of the browser's time than it can spare.
    await new Promise(resume => setTimeout(resume));
    if (mine !== search || wanted.text.toLowerCase() !== text)
      return;
    data.events.forEach((body, k) => {
      const all = itemsOf(data, body).map(item => `${item.name}: ${item.value}`).join('\n');
      hit[chunk.first + k] = all.toLowerCase().includes(text) ? 1 : 0;
    });
  }
  bodyHits = { text, hit };
  applyFilters();
}

function showFilters() {
  for (const name of ['text', 'severity', 'source', 'signs'])
    if (get(name).value !== String(wanted[name]))
      get(name).value = wanted[name];
  get('inBodies').checked = wanted.inBodies;
  const chip = (name, text) => make('button', { type: 'button', class: 'chip',
    title: `${text}: no longer only these`, click: () => change({ [name]: NOTHING[name] }) },
    `${text} ✕`);
  const chips = [];
  if (wanted.object) chips.push(chip('object', objectName([wanted.object.kind, wanted.object.id])));
  if (wanted.title >= 0) chips.push(chip('title', names.title[wanted.title]));
  if (wanted.controller >= 0)
    chips.push(chip('controller', controllerName(names.controller[wanted.controller])));
  if (wanted.span) chips.push(chip('span', `time ${showSpan(...wanted.span)}`));
  get('chips').replaceChildren(...chips);
  get('count').value = shown.length === events.time.length ? counted(shown.length, 'event')
    : `${shown.length.toLocaleString('en')} of ${counted(events.time.length, 'event')}`;
  for (const button of document.querySelectorAll('#side [data-title], #side [data-source]'))
    button.setAttribute('aria-pressed', Number(button.dataset.title ?? -2) === wanted.title ||
      Number(button.dataset.source ?? -2) === wanted.source);
  document.documentElement.dataset.shown = shown.length;
}

// ---- the axis of time ---------------------------------------------------------------------------

const axis = {
  BARS: 120,
  bars: null, // counts by bar and severity

  // From the earliest to the latest time, but for few that are far from all others: a clock that
  // begins at 0 must not push everything into the last bar.
  init() {
    const times = events.time.slice().sort();
    const count = times.length;
    const few = Math.max(Math.ceil(count / 100), Math.min(3, Math.floor(count / 8)));
    const low = times[Math.min(few, count - 1)] ?? 0;
    const high = times[Math.max(count - 1 - few, 0)] ?? 0;
    const far = 3 * Math.max(high - low, 1);
    const isNear = time => time >= low - far && time <= high + far;
    const begin = count > 2 ? times.findIndex(isNear) : 0;
    const end = count > 2 ? times.findLastIndex(isNear) : count - 1;
    this.first = times[begin] ?? 0;
    this.last = times[end] ?? 0;
    this.others = [...times.slice(0, begin), ...times.slice(end + 1)];
    this.scale = this.BARS / (this.last - this.first + 1);
    this.marked = null; // the bars that the keyboard has selected
    const chart = get('chart');
    chart.setAttribute('aria-valuemax', this.BARS - 1);
    let from = null;
    const barAt = x => {
      const box = chart.getBoundingClientRect();
      const bar = Math.floor((x - box.left) / box.width * this.BARS);
      return Math.max(0, Math.min(this.BARS - 1, bar));
    };
    chart.addEventListener('pointerdown', press => {
      chart.setPointerCapture(press.pointerId);
      from = barAt(press.clientX);
      this.mark(from, from);
    });
    chart.addEventListener('pointermove', move => {
      if (from !== null) this.mark(from, barAt(move.clientX));
    });
    chart.addEventListener('pointercancel', () => { from = null; this.draw(); });
    chart.addEventListener('pointerup', () => {
      if (from !== null) this.select();
      from = null;
    });
    chart.addEventListener('keydown', key => {
      const step = { ArrowLeft: -1, ArrowRight: 1 }[key.key];
      if (!step) return;
      key.preventDefault();
      const [a, b] = this.marked ?? [step < 0 ? this.BARS : -1, step < 0 ? this.BARS : -1];
      const next = Math.max(0, Math.min(this.BARS - 1, b + step));
      this.mark(key.shiftKey ? a : next, next);
      this.select();
    });
  },

  barOf(time) {
    return Math.floor((time - this.first) * this.scale);
  },
  // The first time of a bar.
  timeOf(bar) {
    return Math.ceil(this.first + bar / this.scale);
  },
  clear() {
    this.bars = new Uint32Array(4 * this.BARS);
  },
  add(time, severity) {
    if (time >= this.first && time <= this.last)
      ++this.bars[4 * this.barOf(time) + severity];
  },
  mark(a, b) {
    this.marked = [a, b];
    const span = get('chart').querySelector('.span');
    span.setAttribute('x', Math.min(a, b));
    span.setAttribute('width', Math.abs(a - b) + 1);
    get('chart').setAttribute('aria-valuenow', b);
    get('chart').setAttribute('aria-valuetext', showSpan(...this.times()));
  },
  times() {
    const [a, b] = this.marked;
    const first = this.timeOf(Math.min(a, b));
    return [first, Math.max(first, Math.min(this.timeOf(Math.max(a, b) + 1) - 1, this.last))];
  },
  select() {
    change({ span: this.times() });
  },

  // Stacked bars, errors at the bottom.
  draw() {
    const draw = (tag, attributes, ...children) => {
      const node = document.createElementNS('http://www.w3.org/2000/svg', tag);
      for (const [name, value] of Object.entries(attributes))
        node.setAttribute(name, value);
      node.append(...children);
      return node;
    };
    const svg = draw('svg', { viewBox: `0 0 ${this.BARS} 100`, preserveAspectRatio: 'none',
      'aria-hidden': 'true' });
    let most = 1;
    for (let bar = 0; bar < this.BARS; ++bar)
      most = Math.max(most, this.bars.slice(4 * bar, 4 * bar + 4).reduce((a, b) => a + b));
    for (let bar = 0; bar < this.BARS; ++bar) {
      const said = [];
      const parts = [];
      let y = 100;
      for (let severity = 3; severity >= 0; --severity) {
        const count = this.bars[4 * bar + severity];
        if (count === 0) continue;
        said.push(`${count.toLocaleString('en')} ${SEVERITIES[severity]}`);
        const height = Math.max(1.5, 96 * count / most);
        y -= height;
        parts.push(draw('rect', { class: 's' + severity, x: bar + 0.05, width: 0.9,
          y: Math.max(0, y), height }));
      }
      if (parts.length !== 0)
        svg.append(draw('g', {}, draw('title', {}, `from ${showTime(this.timeOf(bar))}: ` +
          said.join(', ')), ...parts));
    }
    svg.append(draw('rect', { class: 'span', y: 0, height: 100, x: 0, width: 0 }));
    get('chart').replaceChildren(svg);
    this.marked = wanted.span && wanted.span[0] >= this.first && wanted.span[1] <= this.last
      ? wanted.span.map(time => this.barOf(time)) : null;
    if (this.marked) this.mark(...this.marked);
    get('axis').replaceChildren(make('span', {}, showTime(this.first)),
      make('span', {}, `highest bar: ${counted(most, 'event')}`),
      make('span', {}, showTime(this.last)));
    if (this.others.length !== 0) {
      const times = [...new Set(this.others)];
      get('axis').append(make('span', { class: 'others' },
        `${counted(this.others.length, 'event')} with other times: `,
        ...times.slice(0, 5).flatMap(time => [make('button', { type: 'button',
          click: () => change({ span: [time, time] }) }, showTime(time)), ' ']),
        times.length > 5 ? '…' : ''));
    }
  },
};

// ---- the list of events -------------------------------------------------------------------------

// Only the rows that are visible exist. Browsers don't scroll farther than some millions of pixels:
// beyond MOST the scroll bar is a scaled one, while wheel and keys still move by pixels.
const list = {
  MOST: 8e6,
  top: 0,      // pixels above the visible ones
  active: 0,   // index in `shown`
  at: 0,       // scrollTop as it was set or seen last
  timer: 0,

  init() {
    const node = get('list');
    node.style.setProperty('--time', showTime(axis.last).length + 1 + 'ch');
    node.addEventListener('scroll', () => this.onScroll());
    new ResizeObserver(() => this.layOut()).observe(node);
    node.addEventListener('click', click => {
      const row = click.target.closest('.row');
      if (!row) return;
      this.activate(Number(row.dataset.index));
      const of = click.target.closest('[data-filter]');
      if (of) filterBy(of, shown[this.active]);
      else open(shown[this.active]);
    });
  },
  reset() {
    const at = pane.event < 0 ? -1 : indexIn(shown, pane.event);
    this.active = Math.max(0, at);
    this.layOut();
    if (at >= 0) this.show(at);
    else this.scrollTo(0);
  },
  layOut() {
    const node = get('list');
    this.height = node.clientHeight;
    this.row = parseFloat(getComputedStyle(node).getPropertyValue('--row'));
    this.real = Math.max(0, shown.length * this.row - this.height);
    this.scaled = Math.min(this.real, this.MOST);
    get('rows').style.height = this.height + 'px';
    get('space').style.height = this.scaled + 'px';
    this.scrollTo(this.top);
  },
  scrollTo(top) {
    this.top = Math.max(0, Math.min(this.real, top));
    get('list').scrollTop = this.real === 0 ? 0 : this.top / this.real * this.scaled;
    this.at = get('list').scrollTop;
    this.render();
  },
  onScroll() {
    const now = get('list').scrollTop;
    const moved = now - this.at;
    if (moved === 0) return;
    this.at = now;
    const far = Math.abs(moved) > 1.5 * this.height;
    if (this.real === this.scaled) this.top = now;
    else if (far || now <= 0 || now >= this.scaled) this.top = now / this.scaled * this.real;
    else this.top = Math.max(0, Math.min(this.real, this.top + moved));
    this.render();
    clearTimeout(this.timer);
    if (this.real !== this.scaled)
      this.timer = setTimeout(() => this.scrollTo(this.top), 200); // puts the scroll bar right
  },
  show(index) {
    const y = index * this.row;
    if (y < this.top || y + this.row > this.top + this.height)
      this.scrollTo(y - (this.height - this.row) / 2);
    else
      this.render();
  },
  activate(index) {
    if (shown.length === 0) return;
    this.active = Math.max(0, Math.min(shown.length - 1, index));
    const y = this.active * this.row;
    if (y < this.top) this.scrollTo(y);
    else if (y + this.row > this.top + this.height) this.scrollTo(y + this.row - this.height);
    else this.render();
  },
  render() {
    const first = Math.floor(this.top / this.row);
    const last = Math.min(shown.length, Math.ceil((this.top + this.height) / this.row));
    const rows = [];
    for (let i = first; i < last; ++i) {
      const row = rowOf(i);
      row.style.top = `${i * this.row - this.top}px`;
      rows.push(row);
    }
    get('rows').replaceChildren(...rows);
    if (shown.length !== 0) get('list').setAttribute('aria-activedescendant', 'row' + this.active);
    else get('list').removeAttribute('aria-activedescendant');
  },
};

// Of a sorted array, -1 if it isn't there.
function indexIn(sorted, value) {
  let low = 0;
  for (let high = sorted.length; low < high;) {
    const middle = (low + high) >> 1;
    if (sorted[middle] < value) low = middle + 1;
    else high = middle;
  }
  return sorted[low] === value ? low : -1;
}

const signsOf = event => SIGNS.filter(([bit]) => events.signs[event] & bit);

function rowOf(index) {
  const event = shown[index];
  const summary = summaryOf(event);
  const what = make('span', { class: 'what' }, make('b', {}, names.title[events.title[event]]));
  for (const [, sign, meaning] of signsOf(event))
    what.append(' ', make('span', { class: 'sign', title: meaning }, sign));
  for (const [i, object] of objectsOf(event).entries())
    what.append(make('span', { class: 'tag', 'data-filter': 'object', 'data-object': i },
      objectName(object) + (object[2] ? ' ~' : '')));
  what.append(summary ? ' ' + summary : '');
  return make('div', { id: 'row' + index, class: 'row s' + severityOf(event), role: 'option',
    'data-index': index, 'aria-selected': index === list.active, 'aria-posinset': index + 1,
    'aria-setsize': shown.length },
    make('span', { class: 'number' }, showTime(events.time[event])),
    make('span', { class: 'number soft' }, events.sequence[event]),
    make('span', { class: 'severity', 'data-filter': 'severity' },
      names.type[events.type[event]][0]),
    make('span', { 'data-filter': 'source' }, names.source[events.source[event]]), what);
}

// What a click on a part of an event filters by.
function filterBy(node, event) {
  const name = node.dataset.filter;
  if (name === 'object') {
    const [kind, id] = objectsOf(event)[node.dataset.object];
    const [enclosure, controller] = names.controller[events.controller[event]];
    toggle('object', { kind, id, enclosure, controller: facts.kinds[kind][1] ? controller : '' });
  } else {
    toggle(name, name === 'severity' ? severityOf(event) : events[name][event]);
  }
}

// ---- an open event ------------------------------------------------------------------------------

const pane = { event: -1 };

// Sequence numbers are counted by each log: a number after a point tells which of several.
function linkOf(event) {
  const number = events.sequence[event];
  const next = from => events.sequence.indexOf(number, from);
  let before = 0;
  for (let i = next(0); i < event; i = next(i + 1))
    ++before;
  return `#seq=${number}` + (before === 0 ? '' : `.${before + 1}`);
}

function followLink() {
  const found = /^#seq=(\d+)(?:\.(\d+))?$/.exec(location.hash);
  if (!found) return;
  let event = -1;
  for (let i = Number(found[2] ?? 1); i > 0; --i) {
    event = events.sequence.indexOf(Number(found[1]), event + 1);
    if (event < 0) {
      get('notice').textContent = `No event in this report has this number: ${location.hash}`;
      return;
    }
  }
  get('notice').textContent = '';
  if (event === pane.event) return;
  if (indexIn(shown, event) < 0) change({ ...NOTHING });
  open(event);
}

function closePane() {
  pane.event = -1;
  get('pane').hidden = true;
  history.replaceState(null, '', '#');
  get('list').focus();
}

async function open(event) {
  pane.event = event;
  const chunk = chunkOf(event);
  const data = await bodiesOf(chunk);
  if (pane.event !== event) return;
  const body = data.events[event - chunk.first];
  const [, category, missing, unread, payload] = body;
  const of = (name, text, attributes = {}) => make('button', { type: 'button', 'data-filter': name,
    title: 'Only these', ...attributes }, text);
  const type = names.type[events.type[event]];
  const doubts = signsOf(event).map(([bit, sign, meaning]) =>
    bit === 2 ? `! ${counted(missing, 'byte')} short`
      : bit === 4 ? `+ ${counted(unread, 'byte')} unread` : `${sign} ${meaning}`);
  const node = get('pane');
  node.replaceChildren(
    make('div', { class: 'tools' },
      make('button', { type: 'button', click: closePane }, 'Close')),
    make('h2', {}, names.title[events.title[event]]),
    make('p', {}, summaryOf(event)),
    make('p', { class: 'soft' }, `Time ${showTime(events.time[event])}, sequence number `,
      make('a', { href: linkOf(event) }, events.sequence[event]), `, category ${category}`),
    make('div', { class: 'of' },
      of('severity', type[0], { class: 'severity s' + type[1] }),
      of('source', names.source[events.source[event]]),
      of('title', 'this title'),
      of('controller', controllerName(names.controller[events.controller[event]])),
      ...objectsOf(event).map((object, i) => of('object',
        objectName(object) + (object[2] ? ' ~' : ''), { 'data-object': i }))),
    ...doubts.map(doubt => make('p', { class: 'sign' }, doubt)),
    make('h3', {}, 'Body'),
    partsOf(itemsOf(data, body), payload),
    make('h3', {}, 'Just before and after'));
  for (let i = Math.max(0, event - 5); i < Math.min(events.time.length, event + 6); ++i)
    node.append(make('button', { type: 'button', class: `near s${severityOf(i)}` +
      (i === event ? ' this' : ''), click: () => open(i) },
      `${showTime(events.time[i])}  ${names.source[events.source[i]]}  ` +
      `${names.title[events.title[i]]}: ${summaryOf(i)}`));
  node.hidden = false;
  node.scrollTop = 0;
  history.replaceState(null, '', linkOf(event));
  list.layOut();
  const at = indexIn(shown, event);
  if (at >= 0) {
    list.active = at;
    list.show(at);
  }
  document.documentElement.dataset.open = event;
}

// The body, and the payload's bytes; pointing at either marks what it is in the other.
function partsOf(items, payload) {
  const BYTES = 4096; // shown
  const PER_LINE = isNarrow.matches ? 8 : 16;
  const rows = [];
  const blocks = [make('div', { class: 'body' })];
  for (const item of items) {
    const doubt = ['', '', ' ~'][item.layout];
    if (item.type === END) {
      blocks.pop();
    } else if (item.type === GROUP) {
      const group = make('div', { class: 'in' });
      blocks.at(-1).append(make('div', { class: 'item' }, make('b', {}, item.name)), group);
      blocks.push(group);
    } else {
      const row = make('div', { class: item.type === TEXT ? 'item text' : 'item',
        tabindex: item.ranges.length ? 0 : undefined }, ...(item.type === TEXT ? [] :
        [make('span', {}, item.name + doubt)]), make('span', {}, item.value));
      blocks.at(-1).append(row);
      rows.push([row, item.ranges]);
    }
  }
  const hex = make('pre', { 'aria-label': 'Payload in hexadecimal' });
  const bytes = [];
  const size = payload.length / 2;
  for (let at = 0; at < Math.min(size, BYTES); ++at) {
    if (at % PER_LINE === 0)
      hex.append(at === 0 ? '' : '\n', make('i', {}, at.toString(16).padStart(4, '0')), '  ');
    bytes.push(make('b', {}, payload.substr(2 * at, 2)));
    hex.append(bytes[at], at % 4 === 3 ? ' ' : '');
  }
  const said = make('p', { class: 'soft', 'aria-live': 'polite' });
  const clear = () => {
    for (const [row] of rows) row.classList.remove('on');
    for (const byte of bytes) byte.classList.remove('on');
    said.textContent = (size === 0 ? 'The record has no payload.'
      : `${counted(size, 'byte')} of payload` + (size > BYTES ? `, the first ${BYTES} here` : '')) +
      (rows.some(([, ranges]) => ranges.length) ? '. Point at an element to see its bytes.' : '');
  };
  const covers = (ranges, at) => ranges.some((begin, i) =>
    i % 3 === 0 && at >= begin && at < begin + ranges[i + 1]);
  const point = target => {
    const row = rows.find(([node]) => node.contains(target));
    const at = bytes.indexOf(target);
    if (!row && at < 0) return;
    clear();
    if (row) {
      row[0].classList.add('on');
      bytes.forEach((byte, i) => byte.classList.toggle('on', covers(row[1], i)));
      const places = [];
      for (let i = 0; i < row[1].length; i += 3) {
        const [begin, count, missing] = row[1].slice(i, i + 3);
        places.push((count === 1 ? `${begin}` : `${begin} to ${begin + count - 1}`) +
          (missing ? ` (${missing} missing)` : ''));
      }
      said.textContent = places.length === 0 ? 'Not known to come from the payload'
        : `From byte ${[...new Set(places)].join(', ')} of the payload`;
    } else {
      bytes[at].classList.add('on');
      const made = rows.filter(([, ranges]) => covers(ranges, at));
      for (const [node] of made) node.classList.add('on');
      said.textContent = `Byte ${at}: ${counted(made.length, 'element')} of the body`;
    }
  };
  clear();
  const parts = make('div', { class: 'parts', pointerover: over => point(over.target),
    focusin: focus => point(focus.target), pointerleave: clear }, blocks[0],
    make('div', {}, said, hex));
  return parts;
}

// ---- the overview -------------------------------------------------------------------------------

function fillList(id, heading, rows, more) {
  get(id).firstElementChild.textContent = heading;
  get(id).append(make('ul', {}, ...rows.map(row => make('li', {}, row))),
    ...(more ? [make('p', { class: 'soft' }, more)] : []));
}

// Counts of the events by a column, those with the worst severity first.
function countBy(name) {
  const { [name]: column, type: types, signs } = events;
  const severities = names.type.map(type => type[1]);
  const bySigns = new Uint32Array(16 * names[name].length);
  const worst = new Uint8Array(names[name].length);
  for (let i = 0; i < column.length; ++i) {
    ++bySigns[16 * column[i] + signs[i]];
    worst[column[i]] = Math.max(worst[column[i]], severities[types[i]]);
  }
  const sum = (number, bit) => bySigns.slice(16 * number, 16 * number + 16).reduce(
    (all, count, signs) => signs & bit || !bit ? all + count : all, 0);
  return names[name].map((text, number) => ({ number, severity: worst[number],
    count: sum(number, 0), signs: SIGNS.map(([bit]) => sum(number, bit)) }))
    .sort((a, b) => b.severity - a.severity || b.count - a.count);
}

function fillFacets(id, name, heading, show) {
  const MOST = 200;
  const all = countBy(name);
  const rows = all.slice(0, MOST).map(({ number, count, severity, signs }) => {
    const doubts = SIGNS.map(([, sign, meaning], k) =>
      signs[k] ? `${sign} ${meaning} in ${signs[k].toLocaleString('en')}` : '').filter(Boolean);
    return make('button', { type: 'button', class: `facet s${severity}`, [`data-${name}`]: number,
      title: doubts.join(', ') || undefined, click: () => toggle(name, number) },
      make('span', {}, show(names[name][number])), make('span', { class: 'soft' },
        count.toLocaleString('en')));
  });
  fillList(id, `${heading} (${all.length.toLocaleString('en')})`, rows,
    all.length > MOST ? `and ${counted(all.length - MOST, 'more', 'more')}` : '');
}

// The event with this number that names the object: other logs may have the number, too.
function firstOf({ kind, id, enclosure }, title, sequence) {
  const next = from => events.sequence.indexOf(sequence, from);
  const first = next(0);
  for (let i = first; i >= 0; i = next(i + 1))
    if (names.title[events.title[i]].startsWith(title) &&
        names.controller[events.controller[i]][0] === enclosure &&
        objectsOf(i).some(([otherKind, otherId]) => otherKind === kind && otherId === id))
      return i;
  return first;
}

// One object's line and story.
function objectOf(object) {
  const { kind, id, enclosure, controller } = object;
  const worst = object.severities.findLastIndex(count => count !== 0);
  const counts = object.severities.map((count, severity) => count === 0 ? '' : counted(count,
    SEVERITIES[severity], SEVERITIES[severity] + (severity < 2 ? '' : 's'))).reverse();
  const errors = new Set(object.story.filter(step => step[0] === 3).map(step => step[2]));
  const line = [counts.filter(Boolean).join(', '), `time ${showSpan(...object.time)}`,
    [...errors].slice(0, 3).join(', ')];
  const story = make('div', { class: 'story' });
  const tell = toggled => {
    if (!toggled.target.open || story.hasChildNodes()) return;
    const all = counted(object.events, 'event');
    const known = [object.model && `Model ${object.model}`,
      object.serialNumber && `Serial number ${object.serialNumber}`,
      object.assumed && `~ layout assumed in ${object.assumed} of ${all}`];
    const only = () => toggle('object', { kind, id, enclosure, controller });
    story.append(...known.filter(Boolean).map(fact => make('p', {}, fact)),
      make('button', { type: 'button', click: only }, `Show ${all}`),
      make('ol', {}, ...object.story.map(
        ([severity, source, title, summary, count, first, last, sequence]) =>
          make('li', { class: 's' + severity }, `${showSpan(first, last)} `, make('b', {}, title),
            ` ${source}` + (count > 1 ? `, ${count.toLocaleString('en')} times` : '') +
            (summary && summary !== title ? `: ${summary} ` : ' '),
            make('a', { href: linkOf(firstOf(object, title, sequence)) }, `#${sequence}`)))),
      ...(object.untold ? [make('p', {}, `and ${counted(object.untold, 'more event')}`)] : []));
  };
  return make('details', { class: 's' + worst, toggle: tell },
    make('summary', {}, make('b', {}, objectName([kind, id])), ' ',
      make('span', { class: 'soft' }, [enclosure, controller].filter(Boolean).join(', ')),
      make('br'), line.filter(Boolean).join(' · '),
      object.assumed ? make('span', { class: 'sign', title: 'layout assumed' }, ' ~') : ''), story);
}

function fillOverview() {
  get('facts').textContent = [counted(events.time.length, 'event'),
    facts.files.length === 1 ? facts.files[0][0]
      : counted(facts.files.length + facts.moreFiles, 'file'),
    facts.faults ? `damage in ${counted(facts.faults, 'place')}` : 'no damage',
    facts.filters && `only ${facts.filters}`, `made ${facts.made}`].filter(Boolean).join(' · ');
  fillList('objects', 'What happened, by object, the worst first', facts.objects.map(objectOf),
    facts.objects.length === 0 ? 'No event names a drive, a fan, a connection or the like.'
      : facts.moreObjects ? `and ${counted(facts.moreObjects, 'more object')}, in the events` : '');
  fillFacets('titles', 'title', 'Titles', title => title);
  fillFacets('sources', 'source', 'Sources', source => source);
  fillFacets('controllers', 'controller', 'Controllers', controllerName);
  fillList('remarks', facts.faults ? `Damage: ${counted(facts.faults, 'place')}`
    : facts.remarks.length ? 'Remarks on the input' : 'No damage', facts.remarks,
    facts.moreRemarks ? `and ${counted(facts.moreRemarks, 'more', 'more')}` : '');
  fillList('about', 'About this report', [
    ...facts.files.map(([name, bytes]) => `${name}: ${counted(bytes, 'byte')}`),
    ...(facts.moreFiles ? [`and ${counted(facts.moreFiles, 'more file')}`] : []),
    facts.filters ? `Left out by ${facts.filters}: ${counted(facts.leftOut, 'event')}` : 'No event was left out by filters.',
    `Made by ${facts.program}, ${facts.made}`]);
  for (const item of document.querySelectorAll('#remarks li, #about li'))
    item.replaceWith(make('p', {}, item.textContent));
  names.source.map((name, number) => [name, number]).sort().forEach(([name, number]) =>
    get('source').append(make('option', { value: number }, name)));
}

// ---- the start ----------------------------------------------------------------------------------

function listen() {
  let timer;
  get('filters').addEventListener('submit', event => event.preventDefault());
  get('filters').addEventListener('input', event => {
    const { id, value, checked } = event.target;
    clearTimeout(timer);
    if (id === 'inBodies') change({ inBodies: checked });
    else if (id === 'severity' || id === 'source') change({ [id]: Number(value) });
    else if (id === 'signs') change({ signs: value });
    else timer = setTimeout(() => change({ text: value }), 150);
  });
  get('pane').addEventListener('click', event => {
    const of = event.target.closest('[data-filter]');
    if (of) filterBy(of, pane.event);
  });
  window.addEventListener('hashchange', followLink);
  document.addEventListener('keydown', event => {
    const isTyped = event.target.matches('input[type=search]');
    if (event.key === 'Escape') {
      if (pane.event >= 0 && !isTyped) closePane();
      else change({ ...NOTHING });
      if (isTyped) get('list').focus();
      return;
    }
    if (event.ctrlKey || event.altKey || event.metaKey || event.target.matches('input, select')) {
      if (isTyped && event.key === 'Enter') get('list').focus();
      return;
    }
    if (event.key === '/') {
      event.preventDefault();
      get('text').focus();
      return;
    }
    const isList = event.target === get('list') || event.target === document.body;
    const page = Math.max(1, Math.floor(list.height / list.row) - 1);
    const step = { j: 1, k: -1, ...(isList ? { ArrowDown: 1, ArrowUp: -1, PageDown: page,
      PageUp: -page, Home: -Infinity, End: Infinity } : {}) }[event.key];
    if (step) {
      event.preventDefault();
      list.activate(list.active + step);
      if (pane.event >= 0) open(shown[list.active]);
    } else if (isList && event.key === 'Enter' && shown.length !== 0) {
      open(shown[list.active]);
    }
  });
}

async function start() {
  if (typeof DecompressionStream === 'undefined') {
    get('notice').textContent = 'This browser is too old to unpack the events of this page ' +
      '(DecompressionStream). It takes Chrome or Edge 97, Firefox 113, Safari 16.4, or later ones.';
    return;
  }
  await load();
  fillOverview();
  axis.init();
  for (const node of [get('side'), get('time'), document.querySelector('main')])
    node.hidden = false;
  list.init();
  listen();
  get('titles').open = !isNarrow.matches;
  applyFilters();
  get('notice').textContent = '';
  followLink();
  document.documentElement.dataset.ready = performance.now();
}

start().catch(error => {
  get('notice').textContent = `The page is damaged, and can't be shown: ${error.message}`;
});
