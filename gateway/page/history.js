// SPDX-License-Identifier: GPL-3.0-or-later
// The verdicts of the chosen time as a band and as a log.
'use strict';
const RANGES = [['1 h', 1], ['6 h', 6], ['12 h', 12], ['24 h', 24], ['7 d', 168]];
const RENEW_MS = 60000;
const past = {hours: 12, since: 0, until: 0, periods: [], points: [], loaded: 0, loading: false, any: false};

function addHistory() {
  const main = document.querySelector('main');
  const right = make('div', {id: 'right'});
  main.append(right);
  right.append($('readings'), $('band'), $('charts'));
  // A phone shows the log between the band and the charts, with the choice of time at these.
  const place = () => {
    const wide = matchMedia('(min-width: 1000px)').matches;
    if (wide) main.insertBefore($('log'), right);
    else right.insertBefore($('log'), $('charts'));
    $(wide ? 'band' : 'charts').prepend(document.querySelector('.head'));
    drawAxes();
    redrawCharts();
  };
  const filter = make('input', {type: 'search', placeholder: 'Filter', 'aria-label': 'Filter the log'});
  filter.oninput = () => showLog(filter.value);
  const copy = make('button', {type: 'button'}, 'Copy');
  copy.onclick = () => copyText(logLines('\t').join('\n'));
  const save = make('button', {type: 'button'}, 'CSV');
  save.onclick = () => saveText('skyhold-log.csv', ['from,to,verdict,causes', ...logLines(',')].join('\n') + '\n');
  $('log').append(make('div', {class: 'tools'}, make('h2', {}, 'Log'), filter, copy, save), make('ol'));
  $('band').append(make('div', {class: 'in-plot'}, make('svg', {class: 'strip', viewBox: '0 0 1000 28', preserveAspectRatio: 'none', role: 'img', 'aria-label': 'Verdicts over time'}), make('div', {class: 'axis'})));
  addCharts();
  matchMedia('(min-width: 1000px)').addEventListener('change', place);
  place();
}

const kindOf = (period) => (period.verdict === 'unsafe' && causesIn(period).some((cause) => cause.kind === 'source') ? 'failed' : period.verdict);
const causesIn = (period) => (period.changes || []).flatMap((change) => change.causes || []);

async function loadHistory() {
  if (past.loading || document.visibilityState === 'hidden') return;
  past.loading = true;
  past.loaded = performance.now();
  try {
    const until = Date.now();
    const since_ = until - past.hours * 3600000;
    const iso = (time) => new Date(time).toISOString().slice(0, 19) + 'Z';
    const answer = await fetch(`api/history?since=${iso(since_)}&until=${iso(until + 1000)}&points=480`, {cache: 'no-store', signal: AbortSignal.timeout(10000)});
    if (!answer.ok) return;
    const kept = await answer.json();
    past.periods = kept.periods || [];
    past.points = kept.points || [];
    past.since = since_;
    past.until = until;
    past.any = true;
    keepLast();
    drawHistory();
  } catch { /* the next one will do */ } finally { past.loading = false; }
}

// A page that is opened while a source fails has its last values from here.
function keepLast() {
  for (const {key} of QUANTITIES) {
    const last = past.points.filter((point) => typeof spread(point[key])[1] === 'number').pop();
    if (!known[key] && last) known[key] = {value: spread(last[key])[1], time: last.time};
  }
  shown.readings = null;
}

function drawHistory() {
  for (const id of ['band', 'log', 'charts']) $(id).hidden = !past.any;
  drawBand();
  drawAxes();
  showLog(document.querySelector('#log input').value);
  redrawCharts();
}

// Called whenever the page is drawn anew.
let before = null;
function showHistory(state) {
  if (performance.now() - past.loaded > RENEW_MS && state !== 'unknown') loadHistory();
  if (state !== before && past.any) { before = state; drawHistory(); }
  const on = document.querySelector('#log .on');
  if (on && state !== 'unknown') on.textContent = lasted(past.periods[past.periods.length - 1]);
}

const HEIGHTS = {safe: 9, waiting: 16, unsafe: 28, failed: 28};
function drawBand() {
  const place = (time) => Math.min(Math.max((Date.parse(time) - past.since) / (past.until - past.since), 0), 1) * 1000;
  const strip = document.querySelector('#band .strip');
  const bars = past.periods.map((period) => {
    const kind = kindOf(period);
    const high = HEIGHTS[kind] || 0;
    const from = place(period.from);
    const to = period.lasts && sayState()[0] !== 'unknown' ? 1000 : place(period.to);
    return make('rect', {class: kind, x: Math.min(from, 998), y: 28 - high, width: Math.max(to - from, 2), height: high});
  });
  if (sayState()[0] === 'unknown' && heard.last) {
    const from = place(new Date(heard.last).toISOString());
    bars.push(make('rect', {class: 'failed', x: Math.min(from, 990), y: 0, width: Math.max(1000 - from, 10), height: 28}));
  }
  strip.replaceChildren(make('line', {class: 'none', x1: 0, x2: 1000, y1: 27, y2: 27}), ...bars);
}

function axisTicks() {
  const wide = matchMedia('(min-width: 1000px)').matches;
  const step = [1 / 6, 1, wide ? 1 : 2, wide ? 2 : 4, 24][RANGES.findIndex(([, hours]) => hours === past.hours)] * 3600000;
  const ticks = [];
  const day = new Date(past.since);
  day.setHours(0, 0, 0, 0);
  for (let at = day.getTime(); at < past.until; at += step) {
    if (at <= past.since) continue;
    const date = new Date(at);
    const midnight = date.getHours() === 0 && date.getMinutes() === 0;
    const text = past.hours > 24 ? `${date.getDate()} ${date.toDateString().slice(4, 7)}`
      : past.hours > 1 ? two(date.getHours()) + (wide ? ':00' : '') : clockText(at, false);
    const share = (at - past.since) / (past.until - past.since);
    if (share > 0.03 && share < 0.97) ticks.push({share, text, midnight});
  }
  return ticks;
}
// With its day where more than one is shown.
const momentText = (time) => (past.hours > 24 ? new Date(time).toDateString().replace(/^\w+ (\w+) (\d+) .*/, '$2 $1 ') : '') + clockText(time);
function drawAxes() {
  for (const axis of document.querySelectorAll('.axis')) {
    axis.replaceChildren(...axisTicks().map(({share, text, midnight}) => {
      const label = make('span', {class: midnight ? 'midnight' : ''}, text);
      label.style.left = `${share * 100}%`;
      return label;
    }));
  }
}

const WORDS = {safe: 'Safe', unsafe: 'Unsafe', waiting: 'Waiting', failed: 'Unsafe'};
function causeWords(period) {
  const texts = causesIn(period).filter((cause) => cause.kind !== 'delay' || period.verdict === 'waiting').map(causeText);
  return [...new Map(texts.map((text) => [text.split(',')[0].replace(/[-0-9.]+/g, ''), text])).values()].join(' · ');
}
// What lasts does so only for as long as something is heard.
const lastedUntil = () => (sayState()[0] === 'unknown' ? heard.last || past.until : Date.now());
const lasted = (period) => durationText(((period.lasts ? lastedUntil() : Date.parse(period.to)) - Date.parse(period.from)) / 1000);

function showLog(filter) {
  const wanted = filter.trim().toLowerCase();
  const rows = [...past.periods].reverse().map((period) => {
    const words = causeWords(period);
    const kind = kindOf(period);
    const icon = smallShape(WORDS[kind] ? kind : 'stopped');
    icon.setAttribute('class', 'icon ' + kind);
    return {text: `${momentText(period.from)} ${WORDS[kind] || ''} ${words}`.toLowerCase(),
      row: make('li', {}, icon, make('span', {}, momentText(period.from), ' ', make('b', {}, WORDS[kind] || period.verdict)),
        make('span', {class: period.lasts ? 'lasted on' : 'lasted'}, lasted(period)), make('span', {class: 'causes'}, words))};
  }).filter(({text}) => text.includes(wanted)).map(({row}) => row);
  if (sayState()[0] === 'unknown' && heard.last) {
    const icon = smallShape('failed');
    icon.setAttribute('class', 'icon failed');
    rows.unshift(make('li', {}, icon, make('span', {}, momentText(heard.last), ' ', make('b', {}, 'Nothing heard since'))));
  }
  document.querySelector('#log ol').replaceChildren(...(rows.length ? rows : [make('li', {class: 'empty'}, 'No verdict in this time')]));
}

const quoted = (text) => (/[",\n]/.test(text) ? `"${text.replace(/"/g, '""')}"` : text);
function logLines(separator) {
  return [...past.periods].reverse().map((period) => [period.from, period.lasts ? '' : period.to, period.verdict, causeWords(period)]
    .map((text) => (separator === ',' ? quoted(text) : text)).join(separator));
}
function copyText(text) {
  if (navigator.clipboard) { navigator.clipboard.writeText(text).catch(() => {}); return; }
  const box = make('textarea', {readonly: ''}); // without encryption a browser has no clipboard
  box.value = text;
  document.body.append(box);
  box.select();
  document.execCommand('copy');
  box.remove();
}
function saveText(name, text) {
  const link = make('a', {download: name, href: URL.createObjectURL(new Blob([text], {type: 'text/csv'}))});
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 1000);
}
