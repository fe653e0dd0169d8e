// SPDX-License-Identifier: GPL-3.0-or-later
// Elements, number forms, gauges and the readings.
'use strict';
const SVG = 'http://www.w3.org/2000/svg';

// make('li', {class: 'x'}, child, 'text'); an SVG element where the name says so.
function make(name, attributes = {}, ...children) {
  const vector = /^(svg|path|rect|circle|line|text|use)$/.test(name);
  const element = vector ? document.createElementNS(SVG, name) : document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (value !== null && value !== false) element.setAttribute(key, value);
  }
  element.append(...children.filter((child) => child !== null && child !== ''));
  return element;
}

const two = (number) => String(number).padStart(2, '0');
function clockText(time, seconds = true) {
  const date = new Date(time);
  return two(date.getHours()) + ':' + two(date.getMinutes()) + (seconds ? ':' + two(date.getSeconds()) : '');
}
function durationText(seconds) {
  const whole = Math.max(0, Math.floor(seconds));
  const days = Math.floor(whole / 86400);
  const hours = Math.floor(whole / 3600) % 24;
  const minutes = Math.floor(whole / 60) % 60;
  if (days > 0) return `${days} d ${hours} h`;
  if (hours > 0) return `${hours} h ${two(minutes)} min`;
  if (minutes > 0) return `${minutes} min ${two(whole % 60)} s`;
  return `${whole} s`;
}

// A direction is no amount, and the three of the sensor program have levels without limits: `turned`
// where their first level is at the upper end.
const QUANTITIES = [
  {key: 'cloud', name: 'Cloud', digits: 1},
  {key: 'rain', name: 'Rain', digits: 0, turned: true},
  {key: 'wind', name: 'Wind', digits: 1, span: (l) => [0, l[1] * 1.5]},
  {key: 'gust', name: 'Gust', digits: 1, span: (l) => [0, l[1] * 1.5]},
  {key: 'humidity', name: 'Humidity', digits: 0, span: (l) => [Math.max(0, 2 * l[0] - l[1] - 30), 100]},
  {key: 'dew_spread', name: 'Dew spread', digits: 1, span: (l) => [0, l[1] * 2]},
  {key: 'temperature', name: 'Temperature', digits: 1,
   span: (l) => [l[0] - (l[1] - l[0]) * 0.2, l[1] + (l[1] - l[0]) * 0.2]},
  {key: 'brightness', name: 'Brightness', digits: 0, turned: true},
  {key: 'wind_direction', name: 'Direction', digits: 1, round: true},
];

function numberText(value, digits) {
  return typeof value === 'number' ? value.toFixed(digits) : '–';
}
function shortNumber(value) {
  return String(Math.round(value * 10) / 10);
}

// Places on a gauge are shares of its width.
const TOP = 10;
const HIGH = 8;
const percent = (share) => `${Math.round(Math.min(Math.max(share, 0), 1) * 1000) / 10}%`;

function gaugeFrame() {
  return make('svg', {class: 'gauge', 'aria-hidden': 'true'},
    make('rect', {class: 'well', x: 0, y: TOP, width: '100%', height: HIGH}));
}
function addZone(gauge, from, to) {
  gauge.append(make('rect', {class: 'zone', x: percent(from), y: TOP, width: percent(to - from), height: HIGH}));
}
function addLine(gauge, kind, share) {
  const over = kind === 'limit' ? 2 : 0;
  gauge.append(make('line', {class: kind, x1: percent(share), x2: percent(share), y1: TOP - over, y2: TOP + HIGH + over}));
}
function addMark(gauge, share) {
  gauge.append(make('svg', {x: percent(share), y: 2, overflow: 'visible'},
    make('path', {class: 'mark', d: 'M-5 0H5L1.500 5V18H-1.500V5z'})));
}

function limitGauge(reading, quantity) {
  const limits = reading.limits;
  const gauge = gaugeFrame();
  let [low, high] = quantity.span(limits);
  low = Math.min(low, reading.value);
  high = Math.max(high, reading.value);
  if (!(high > low)) return gauge;
  const share = (value) => Math.min(Math.max((value - low) / (high - low), 0), 1);
  const armed = (level) => (reading.armed || []).includes(level);
  const edges = [0, share(limits[0]), share(limits[1]), 1];
  for (let level = 1; level <= 3; ++level) {
    if (armed(level) && edges[level] > edges[level - 1]) addZone(gauge, edges[level - 1], edges[level]);
  }
  limits.slice(0, 2).forEach((limit, i) => {
    if (limit <= low || limit >= high) return;
    const edge = armed(i + 1) !== armed(i + 2);
    addLine(gauge, edge ? 'limit' : 'tick', share(limit));
    gauge.append(make('text', {class: edge ? 'edge' : '', x: percent(share(limit)), y: 32}, shortNumber(limit)));
  });
  addMark(gauge, share(reading.value));
  return gauge;
}

function levelGauge(reading, quantity) {
  const gauge = gaugeFrame();
  const left = (level) => (quantity.turned ? 3 - level : level - 1) / 3;
  for (let level = 1; level <= 3; ++level) {
    if ((reading.armed || []).includes(level)) addZone(gauge, left(level), left(level) + 1 / 3);
  }
  for (const share of [1 / 3, 2 / 3]) addLine(gauge, 'tick', share);
  if (reading.level >= 1 && reading.level <= 3) addMark(gauge, left(reading.level) + 1 / 6);
  return gauge;
}

function rose(degrees) {
  return make('svg', {class: 'rose', viewBox: '-18 -18 36 36', 'aria-hidden': 'true'},
    make('circle', {r: 16}),
    ...[0, 90, 180, 270].map((at) => make('path', {d: 'M-0.500-16h1v4h-1z', transform: `rotate(${at})`})),
    make('path', {d: 'M0-12L5 9L0 5L-5 9z', transform: `rotate(${degrees})`}));
}

function gaugeOf(reading, quantity) {
  if (typeof reading.value !== 'number') return quantity.round ? make('span') : gaugeFrame();
  if (quantity.round) return rose(reading.value);
  if (quantity.span && (reading.limits || []).length === 3) return limitGauge(reading, quantity);
  return levelGauge(reading, quantity);
}

const known = {}; // the last value of each, with its time

function readingRow(quantity, reading, live, time) {
  const value = live && typeof reading.value === 'number' ? reading.value : null;
  if (value !== null) known[quantity.key] = {value, time};
  const before = known[quantity.key];
  const level = value !== null ? (quantity.round ? reading.compass : reading.label) || ''
    : before ? `was ${numberText(before.value, quantity.digits)} at ${clockText(before.time, false)}` : '';
  const kind = value === null ? 'old' : reading.unsafe || reading.beyond ? 'culprit' : '';
  return make('div', {class: `reading ${kind} ${quantity.round ? 'plain' : ''}`, 'data-key': quantity.key},
    make('h2', {}, quantity.name), make('span', {class: 'level'}, level),
    make('span', {class: 'value'}, numberText(value, quantity.digits)),
    make('span', {class: 'unit'}, reading.unit || ''),
    value === null ? gaugeOf({}, quantity) : gaugeOf(reading, quantity));
}

// A session that is over has last readings; they are shown as such, without a gauge.
function showReadings(snapshot, live) {
  const readings = snapshot.readings || {};
  if (snapshot.session === 'idle') {
    for (const {key} of QUANTITIES) {
      const value = (readings[key] || {}).value;
      if (typeof value === 'number') known[key] = {value, time: snapshot.time};
    }
  }
  document.getElementById('readings').replaceChildren(
    ...QUANTITIES.map((quantity) => readingRow(quantity, readings[quantity.key] || {}, live, snapshot.time)));
}
