// SPDX-License-Identifier: GPL-3.0-or-later
// Follows the gateway's events and shows the state. What was heard counts only for as long as the
// gateway keeps talking and the document says; then the verdict is unknown, whatever it was.
'use strict';
const SILENCE_MS = 4000;
const PROBE_MS = 2000;
const DEAD_LINE_MS = 10000;
const $ = (id) => document.getElementById(id);

// Both clocks: one stands still while a phone sleeps, the other may be set.
function stamp() { return {steady: performance.now(), wall: Date.now()}; }
function since(then) { return Math.max(performance.now() - then.steady, Date.now() - then.wall); }

const heard = {state: null, at: null, anything: null, event: null, taken: 0, before: 0};

function freshMs(snapshot) { return (Number(snapshot.interval_s) || 0) * 1500 + 2000; }
// Something was heard; should it be the last, the page says so in time.
let silence = 0;
function hear() {
  heard.anything = stamp();
  clearTimeout(silence);
  silence = setTimeout(render, SILENCE_MS + 50);
}
function pageLost() { return !heard.anything || since(heard.anything) > SILENCE_MS; }
function documentOld() { return !heard.state.time || heard.before + since(heard.at) > freshMs(heard.state); }

// What the page says: [state, word].
function sayState() {
  if (!heard.state || pageLost() || documentOld()) return ['unknown', 'UNKNOWN'];
  const {session, safe, verdict, causes} = heard.state;
  if (session === 'starting') return ['starting', 'UNKNOWN'];
  if (session !== 'running') return ['stopped', 'UNKNOWN'];
  if (safe === true && verdict === 'safe') return ['safe', 'SAFE'];
  if ((causes || []).some((cause) => cause.kind === 'source')) return ['failed', 'UNSAFE'];
  return [verdict === 'waiting' ? 'waiting' : 'unsafe', 'UNSAFE'];
}

// The page itself holds the shapes: they are there without a script as well.
const shapeUse = (state) => make('use', {href: `#shape-${state}`});
const smallShape = (state) => make('svg', {viewBox: '0 0 100 100', 'aria-hidden': 'true'}, shapeUse(state));

const openWhileNot = (state) => state !== 'safe' && state !== 'unknown' && (heard.state.roof || {}).state === 'open';
function roofText(roof = {}, state = '') {
  if (roof.fault) return roof.fault;
  const text = {open: openWhileNot(state) ? 'roof still open' : 'roof open', closed: 'roof closed'}[roof.state];
  return text || (roof.driven ? 'roof unknown' : '');
}

function waited() {
  const left = Math.max(0, (heard.state.wait_s || 0) - since(heard.at) / 1000);
  const begun = (Date.parse(heard.state.time) - Date.parse(heard.state.since)) / 1000;
  const whole = begun + (heard.state.wait_s || 0);
  return {left, share: whole > 0 ? Math.min(1, 1 - left / whole) : 0};
}

function bannerLines(state) {
  const snapshot = heard.state;
  const lasted = snapshot && snapshot.since
    ? durationText((Date.parse(snapshot.time) - Date.parse(snapshot.since) + since(heard.at)) / 1000) : '';
  const roof = snapshot ? roofText(snapshot.roof, state) : '';
  switch (state) {
  case 'unknown': {
    if (heard.anything && !pageLost()) return ['Monitor lost', 'Treat as unsafe.'];
    return [heard.anything ? `Nothing heard for ${durationText(since(heard.anything) / 1000)}` : 'Nothing heard yet', 'Treat as unsafe. Trying again.'];
  }
  case 'starting': return ['Starting', 'Waiting for the first readings.'];
  case 'stopped': return ['Not monitoring', roof.replace('roof', 'Roof')];
  case 'waiting': {
    const {left} = waited();
    return [`Safe in ${Math.floor(Math.ceil(left) / 60)}:${two(Math.ceil(left) % 60)}`, `Waiting since ${clockText(snapshot.since)}${roof ? ' · ' + roof : ''}`];
  }
  default: return [snapshot.since ? `since ${clockText(snapshot.since)}` : '', [lasted, roof].filter(Boolean).join(' · ')];
  }
}

// The banner counts down; what last reset the delay comes after it.
const causeText = (cause) => (cause.text || '').replace(/^Safe in [^;]*; l/, 'L');

function causeItem(cause) {
  const icon = smallShape({source: 'failed', delay: 'waiting', session: 'stopped'}[cause.kind] || 'unsafe');
  const quantity = QUANTITIES.find(({key}) => key === cause.name);
  icon.setAttribute('class', 'icon ' + cause.kind);
  if (!quantity || typeof cause.value !== 'number') return make('li', {}, icon, make('p', {}, causeText(cause)));
  const value = `${quantity.name} ${numberText(cause.value, quantity.digits)} ${cause.unit || ''}`.trim();
  const limit = typeof cause.limit === 'number' ? `${cause.relation === '>' ? 'above' : 'at most'} ${shortNumber(cause.limit)}`
    : cause.kind === 'beyond' ? 'beyond its last limit' : cause.label === quantity.name ? '' : cause.label;
  const begun = cause.since ? (limit ? '' : 'since ') + clockText(cause.since, false) : '';
  return make('li', {title: cause.text}, icon, make('b', {}, value), make('span', {}, [limit, begun].filter(Boolean).join(', ')));
}

function causeItems(state) {
  const snapshot = heard.state || {};
  if (state === 'unknown') {
    const gone = !heard.state || pageLost();
    const why = gone ? 'The gateway or the network is gone.'
      : heard.state.time ? 'The monitor has not finished a cycle in time.'
        : ((heard.state.causes || [])[0] || {}).text || 'The monitor cannot be reached.';
    return [make('li', {}, make('p', {}, why)),
      make('li', {class: 'dim'}, make('p', {class: 'dim'}, (heard.last ? `Last heard ${clockText(heard.last)}. ` : '') + 'No readings.'))];
  }
  const nearest = snapshot.nearest;
  if (state === 'safe' && nearest) {
    const quantity = QUANTITIES.find(({key}) => key === nearest.name);
    const reading = (snapshot.readings || {})[nearest.name] || {};
    const text = quantity ? `Nearest: ${quantity.name} ${numberText(nearest.value, quantity.digits)} ${reading.unit || ''}, unsafe ${nearest.relation === '>' ? 'above' : 'at or below'} ${shortNumber(nearest.limit)}` : nearest.text;
    return [make('li', {class: 'with-gauge'}, make('p', {}, text), quantity ? gaugeOf(reading, quantity) : '')];
  }
  return (snapshot.causes || []).map(causeItem);
}

// Ticks by the second at first; later the minute is enough.
const ageText = (seconds) => durationText(seconds).replace(/^(\d+ min) .*/, '$1');

function sourceItem(name, source, live, passed) {
  const age = live && typeof source.age_s === 'number' ? source.age_s + passed : null;
  const good = live && source.state === 'ok';
  const mark = !live || source.state === 'absent' && !source.detail ? 'off' : good ? '' : 'failed';
  const seen = source.state === 'ok' ? (age === null ? 'ok' : ageText(age)) : `${source.state || '–'}${age === null ? '' : ', ' + ageText(age)}`;
  return make('li', {class: good || !live ? '' : 'bad', title: source.detail || ''}, make('i', {class: 'dot ' + mark}), make('span', {}, name + ' '),
    make('b', {}, live ? seen : '–'), make('span', {class: 'wide-only'}, live && source.read ? clockText(source.read) : ''));
}

function healthItems(state) {
  const snapshot = heard.state || {};
  const live = state !== 'unknown' && snapshot.session === 'running';
  const passed = heard.at ? since(heard.at) / 1000 : 0;
  const next = Math.max(0, (snapshot.interval_s || 0) - passed - heard.before / 1000);
  const roof = snapshot.roof || {};
  const page = pageLost() ? 'lost' : state === 'unknown' ? 'no monitor' : 'live';
  return [sourceItem('Sensor', (snapshot.sources || {}).sensor || {}, live, passed),
    sourceItem('Station', (snapshot.sources || {}).station || {}, live, passed),
    make('li', {class: 'wide-only'}, make('i', {class: 'dot off'}), make('span', {}, 'Next cycle '),
      make('b', {}, live ? `in ${Math.ceil(next)} s` : '–'), make('span', {}, live ? `every ${snapshot.interval_s} s` : '')),
    make('li', {class: 'wide-only' + (roof.fault ? ' bad' : '')}, make('i', {class: 'dot ' + (roof.fault ? 'failed' : 'off')}), make('span', {}, 'Roof '),
      make('b', {}, live ? roof.state || '–' : '–'), make('span', {}, live ? (roof.driven ? 'driven by the verdict' : 'not driven') : '')),
    make('li', {class: page === 'live' ? 'page' : 'page bad'}, make('i', {class: page === 'live' ? 'dot' : 'dot off'}), make('span', {}, 'Page '), make('b', {}, page), make('span', {class: 'wide-only'}, ''))];
}

const shown = {};
// Writes only what differs: an unchanged page costs nothing, and a reader is not interrupted.
function put(id, key, write) {
  if (shown[id] === key) return;
  shown[id] = key;
  write($(id));
}

let sounded = null;
function render() {
  const [state, word] = sayState();
  const root = document.documentElement;
  root.dataset.state = state;
  root.dataset.word = word;
  put('verdict', word, (element) => {
    element.textContent = word;
    fitVerdict();
  });
  const {share} = state === 'waiting' ? waited() : {share: 0};
  put('shape', `${state} ${Math.round(share * 100)}`, (element) => {
    element.firstElementChild.setAttribute('href', `#shape-${state}`);
    element.style.setProperty('--share', Math.round(share * 100));
  });
  const [first, second] = bannerLines(state);
  put('since', first, (element) => { element.textContent = first; });
  put('more', second, (element) => {
    element.textContent = second;
    element.className = openWhileNot(state) ? 'open' : '';
  });
  const items = causeItems(state);
  put('causes', items.map((item) => item.outerHTML).join(), (element) => element.replaceChildren(...items));
  $('why').hidden = items.length === 0;
  const sources = healthItems(state);
  put('sources', sources.map((item) => item.outerHTML).join(), (element) => element.replaceChildren(...sources));
  const live = state !== 'unknown' && heard.state.session === 'running';
  put('readings', JSON.stringify([live, heard.state && heard.state.readings, heard.state && heard.state.session]), () => {
    showReadings(heard.state || {}, live);
    if (pointed === null) showNow(null);
  });
  const site = heard.state && heard.state.monitor ? heard.state.monitor.site : $('site').textContent;
  put('site', site, (element) => { element.textContent = site; });
  document.title = `${word} – ${site}`;
  const now = new Date();
  const wide = matchMedia('(min-width: 1000px)').matches;
  $('clock').textContent = (wide ? now.toDateString().replace(/^(\w+) (\w+) (\d+)/, '$1 $3 $2') + ' ' : '') + clockText(now);
  const line = pageLost() ? 'lost' : state === 'unknown' ? 'gateway live, monitor lost' : `live, heard ${Math.floor(since(heard.anything) / 1000)} s ago`;
  put('line', line, (element) => element.replaceChildren(make('i', {class: state === 'unknown' ? 'dot off' : 'dot'}), line));
  if (sounded === 'SAFE' && word !== 'SAFE') soundAlarm();
  sounded = word;
  showHistory(state);
}

// As large as the banner has room for.
function fitVerdict() {
  const element = $('verdict');
  element.style.fontSize = '';
  const room = element.clientWidth;
  const size = parseFloat(getComputedStyle(element).fontSize);
  const range = document.createRange();
  range.selectNodeContents(element);
  const width = range.getBoundingClientRect().width;
  if (room > 0 && width > 0) element.style.fontSize = `${Math.min(size * room / width * 0.99, element.parentElement.clientHeight * 0.95)}px`;
}

function take(snapshot, age) {
  const first = !heard.state;
  ++heard.taken;
  hear();
  // Between two cycles a document may come again: it is no younger for that.
  if (first || snapshot.time !== heard.state.time || !snapshot.time) {
    heard.at = stamp();
    heard.before = age;
  }
  if (snapshot.time) heard.last = Date.now();
  const changed = first || snapshot.verdict !== heard.state.verdict || snapshot.session !== heard.state.session;
  heard.state = snapshot;
  render();
  if (changed) setTimeout(loadHistory, first ? 0 : 1500);
}

// The first document may be from any time of the interval; the answer's own date says how old it is.
async function probe() {
  const taken = heard.taken;
  try {
    const answer = await fetch('api/status', {cache: 'no-store', signal: AbortSignal.timeout(PROBE_MS)});
    if (!answer.ok) return;
    const snapshot = await answer.json();
    const age = Date.parse(answer.headers.get('Date')) - Date.parse(snapshot.time);
    // An event that came meanwhile is newer than this answer.
    if (heard.taken === taken) take(snapshot, age >= 0 && age < freshMs(snapshot) ? age : 0);
  } catch { /* nothing heard: the page says so by itself */ }
}

let events = null;
function follow() {
  if (events) events.close();
  const source = new EventSource('api/events');
  events = source;
  heard.event = stamp();
  const on = (name, act) => source.addEventListener(name, (event) => {
    if (source !== events) return;
    // What waited in the line while a phone slept is as old as the sleep: ask anew.
    if (since(heard.event) > SILENCE_MS) { follow(); return; }
    heard.event = stamp();
    hear();
    act(event);
  });
  on('state', (event) => take(JSON.parse(event.data), 0));
  on('alive', () => {});
  source.onopen = () => {
    if (source !== events) return;
    heard.event = stamp();
    hear();
  };
  // A browser gives up after some errors.
  source.onerror = () => { if (source.readyState === EventSource.CLOSED) setTimeout(() => { if (source === events) follow(); }, PROBE_MS); };
}

let audio = null;
function soundAlarm(tones = 6) {
  if (!audio || audio.state !== 'running') return;
  for (let i = 0; i < tones; ++i) {
    const at = audio.currentTime + i * 0.5;
    const tone = audio.createOscillator();
    const volume = audio.createGain();
    tone.type = 'square';
    tone.frequency.value = i % 2 ? 660 : 880;
    volume.gain.setValueAtTime(0.25, at);
    volume.gain.setValueAtTime(0, at + 0.35);
    tone.connect(volume).connect(audio.destination);
    tone.start(at);
    tone.stop(at + 0.4);
  }
}
function remember(name, value) { try { localStorage.setItem(name, value); } catch { /* private windows */ } }

function addButtons() {
  const sound = $('sound');
  const look = $('look');
  const showSound = () => {
    const on = audio !== null && audio.state === 'running';
    sound.setAttribute('aria-pressed', on);
    sound.lastElementChild.textContent = `Sound when unsafe: ${on ? 'on' : 'off'}`;
  };
  sound.onclick = async () => {
    if (!audio) {
      audio = new AudioContext();
      audio.onstatechange = showSound; // a phone takes it away, for a call or in its sleep
    }
    if (sound.getAttribute('aria-pressed') === 'true') {
      await audio.suspend();
    } else {
      await audio.resume();
      soundAlarm(1); // so that one hears how loud it is
    }
    showSound();
  };
  const showLook = () => {
    const night = document.documentElement.dataset.look === 'night';
    look.setAttribute('aria-pressed', night);
    look.lastElementChild.textContent = night ? 'Dark look' : 'Night look';
  };
  look.onclick = () => {
    applyLook(document.documentElement.dataset.look === 'night' ? 'dark' : 'night');
    remember('look', document.documentElement.dataset.look);
    showLook();
    redrawCharts();
  };
  sound.hidden = look.hidden = false;
  showSound();
  showLook();
}

addButtons();
addHistory();
fitVerdict();
probe();
follow();
setInterval(() => {
  if (!heard.anything || since(heard.anything) > PROBE_MS + 500) probe();
  // A line that died without a word, as when a phone changes its network.
  if (since(heard.event) > DEAD_LINE_MS) follow();
  render();
}, 1000);
addEventListener('resize', fitVerdict);
addEventListener('pageshow', (event) => { if (event.persisted) render(); });
document.addEventListener('visibilitychange', render);
