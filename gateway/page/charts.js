// SPDX-License-Identifier: GPL-3.0-or-later
// A curve for each quantity, all over the same time. One that is unsafe is thick and of another
// colour; a gap in the readings is a gap.
'use strict';
const charts = [];
// The legend, axes and grid of the library are not used; they would style elements from a text,
// which the page's policy forbids.
Dygraph.PLUGINS = [];
const ROWS = ['cloud', 'rain', 'wind', 'gust', 'dew_spread', 'humidity', 'temperature', 'brightness', 'wind_direction'];

function addCharts() {
  const ranges = make('div', {id: 'ranges', role: 'group', 'aria-label': 'Time shown'});
  for (const [text, hours] of RANGES) {
    const button = make('button', {type: 'button', 'aria-pressed': hours === past.hours}, text);
    button.onclick = () => {
      past.hours = hours;
      for (const other of ranges.children) other.setAttribute('aria-pressed', other === button);
      loadHistory();
    };
    ranges.append(button);
  }
  $('band').prepend(make('div', {class: 'head'}, make('span', {id: 'moment'}, ''), ranges));
  $('charts').append(make('div', {class: 'rows'}, make('div', {id: 'cursor', hidden: ''})),
    make('div', {class: 'axis-row'}, make('div', {class: 'in-plot'}, make('div', {class: 'axis'}))));
  for (const key of ROWS) {
    const quantity = QUANTITIES.find((one) => one.key === key);
    const plot = make('div', {class: 'plot', role: 'img', 'aria-label': `${quantity.name} over time`});
    const now = make('span', {class: 'now'});
    const unit = make('small');
    const row = make('div', {class: 'chart'}, make('h2', {}, quantity.name + ' ', unit), now, plot);
    document.querySelector('#charts .rows').append(row);
    charts.push({quantity, plot, now, unit, graph: null, rows: []});
  }
}

const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
// Lowest, mean, highest.
const NOTHING = [null, null, null];
const spread = (value) => (Array.isArray(value) ? value : typeof value === 'number' ? [value, value, value] : NOTHING);

// When a quantity was among the causes: [from, to] in milliseconds.
function unsafeSpans(key) {
  const spans = [];
  for (const period of past.periods) {
    const changes = period.changes || [];
    changes.forEach((change, i) => {
      if (period.verdict !== 'unsafe' || !(change.causes || []).some((cause) => cause.name === key)) return;
      const end = i + 1 < changes.length ? changes[i + 1].time : period.lasts ? new Date().toISOString() : period.to;
      spans.push([Date.parse(change.time), Date.parse(end)]);
    });
  }
  return spans;
}

// A point, and a gap where none came for much longer than a span or a cycle.
function rowsOf(key) {
  const spans = unsafeSpans(key);
  const rows = [];
  let last = 0;
  const usual = Math.max(...past.points.slice(0, 50).map((point) => point.span_s || 0), heard.state ? heard.state.interval_s || 10 : 10) * 1000;
  const step = Math.max(usual * 2.5, (past.until - past.since) / 480 * 2.5);
  for (const point of past.points) {
    const at = Date.parse(point.time);
    const values = spread(point[key]);
    if (last && at - last > step) rows.push([new Date(last + 1), NOTHING, NOTHING]);
    last = at;
    const end = at + (point.span_s || 0) * 1000;
    rows.push([new Date(at), values, spans.some(([from, to]) => end >= from && at < to) ? values : NOTHING]);
  }
  return rows;
}

// The span of values that is shown: that of the curve, and of the limits that are near.
function valueRange(chart, limits) {
  if (chart.quantity.round) return [-10, 370];
  const values = chart.rows.map((row) => row[1]).filter((value) => value[1] !== null);
  let low = Math.min(...values.map((value) => value[0]));
  let high = Math.max(...values.map((value) => value[2]));
  const room = Math.max(high - low, Math.abs(high) * 0.05, 1);
  for (const limit of limits) {
    if (limit > high && limit - high < 1.5 * room) high = limit;
    if (limit < low && low - limit < 1.5 * room) low = limit;
  }
  const margin = (high - low || 1) * 0.15;
  return [low - margin, high + margin];
}

function shadeUnsafe(chart, reading) {
  const limits = reading.limits || [];
  const armed = reading.armed || [];
  return (canvas, area, graph) => {
    const [low, high] = graph.yAxisRange();
    const y = (value) => graph.toDomYCoord(Math.min(Math.max(value, low), high));
    canvas.fillStyle = colour('--zone');
    canvas.strokeStyle = colour('--limit');
    const edges = [-Infinity, limits[0], limits[1], Infinity];
    if (limits.length === 3) {
      for (let level = 1; level <= 3; ++level) {
        if (armed.includes(level)) canvas.fillRect(area.x, y(edges[level]), area.w, y(edges[level - 1]) - y(edges[level]));
      }
    }
    canvas.fillStyle = colour('--grid');
    for (const {share} of axisTicks()) canvas.fillRect(area.x + share * area.w, area.y, 1, area.h);
    canvas.fillStyle = colour('--limit');
    for (const limit of edgeLimits(reading)) if (limit > low && limit < high) canvas.fillRect(area.x, y(limit) - 0.5, area.w, 1);
  };
}

// The limits beyond which it is unsafe.
function edgeLimits(reading) {
  const armed = reading.armed || [];
  return (reading.limits || []).slice(0, 2).filter((_, i) => armed.includes(i + 1) !== armed.includes(i + 2));
}

let pointed = null;
function point(index) {
  pointed = index;
  for (const {graph} of charts) if (graph && graph.getSelection() !== index) graph.setSelection(index);
  showNow(index);
}
function showNow(index) {
  const live = heard.state && heard.state.session === 'running' && sayState()[0] !== 'unknown';
  for (const chart of charts) {
    const then = index !== null && chart.rows[index];
    const reading = (heard.state && heard.state.readings || {})[chart.quantity.key] || {};
    const value = then ? then[1][1] : live ? reading.value : null;
    chart.now.textContent = numberText(value, chart.quantity.digits);
    chart.now.className = then ? 'now then' : typeof value === 'number' ? 'now' : 'now old';
  }
  const at = index !== null && charts[0].rows[index];
  const {plot, graph} = charts.find((chart) => chart.graph) || {};
  $('cursor').hidden = !at || !graph;
  if (at && graph) $('cursor').style.left = `${plot.offsetLeft + graph.toDomXCoord(at[0].getTime())}px`;
  $('moment').textContent = at ? momentText(at[0]) : new Date(past.until).toDateString().replace(/^(\w+) (\w+) (\d+) .*/, '$1 $3 $2');
}

function redrawCharts() {
  if (!past.any || $('charts').hidden) return;
  for (const chart of charts) {
    const reading = (heard.state && heard.state.readings || {})[chart.quantity.key] || {};
    chart.rows = rowsOf(chart.quantity.key);
    chart.unit.textContent = reading.unit || '';
    if (chart.graph) chart.graph.destroy();
    chart.graph = null;
    chart.plot.replaceChildren();
    if (!chart.rows.some((row) => row[1][1] !== null)) continue;
    const range = valueRange(chart, edgeLimits(reading));
    chart.graph = new Dygraph(chart.plot, chart.rows, {
      labels: ['time', 'value', 'unsafe'], dateWindow: [past.since, past.until], valueRange: range,
      colors: [colour('--curve'), colour('--beyond')], strokeWidth: 1.2, series: {unsafe: {strokeWidth: 3, pointSize: 1.5}},
      customBars: true, fillAlpha: 0.35,
      axes: {x: {drawAxis: false, drawGrid: false}, y: {drawAxis: false, drawGrid: false, axisLabelWidth: 0}},
      drawPoints: chart.quantity.round, pointSize: 1, legend: 'never', showLabelsOnHighlight: false,
      highlightCircleSize: 3, animatedZooms: false, interactionModel: {}, xRangePad: 0, rightGap: 0,
      underlayCallback: shadeUnsafe(chart, reading),
      highlightCallback: (_event, _x, _points, row) => point(row),
      unhighlightCallback: () => {
        pointed = null;
        for (const {graph} of charts) if (graph) graph.clearSelection();
        showNow(null);
      },
    });
    if (chart.quantity.round) chart.graph.updateOptions({strokeWidth: 0});
    for (const limit of edgeLimits(reading)) {
      if (limit <= range[0] || limit >= range[1]) continue;
      const label = make('i', {}, shortNumber(limit));
      label.style.top = `clamp(0.4rem, ${(range[1] - limit) / (range[1] - range[0]) * 100}%, 100% - 0.4rem)`;
      chart.plot.append(label);
    }
  }
  pointed = null;
  showNow(null);
}
