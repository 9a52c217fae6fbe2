'use strict';
// Each card is one question: its text, put in by the build, is what the server gets.
const questions = @QUESTIONS@;

const cards = [
  {question: 'prevalence', label: 'name', values: {machines: 'Machines'}, horizontal: true},
  {question: 'versions-of', label: 'version', values: {machines: 'Machines'}},
  {question: 'new-in-fleet'},
  {question: 'changes-by-day', label: 'day', values: {machines: 'Machines'}},
  {question: 'drift', label: 'host', values: {extra: 'Beyond it', other_version: 'In another version', missing: 'Lacking'}, horizontal: true},
  {question: 'vulnerable'},
];
const colours = ['#2f6fb3', '#d08a1d', '#b3402f'];
const form = document.getElementById('form');
const status = document.getElementById('status');

const quoted = (text) => "'" + text.replaceAll('\\', '\\\\').replaceAll("'", "\\'") + "'";
const bound = (sql, parameters) => sql.replace(/\{(\w+):String\}/g, (_, name) => quoted(parameters[name] ?? ''));
const title = (sql) => sql.split('\n')[0].slice(3);
const day = (ago) => new Date(Date.now() - ago * 86400000).toISOString().slice(0, 10) + ' 00:00:00';

function element(name, properties = {}, ...children) {
  const made = Object.assign(document.createElement(name), properties);
  made.append(...children);
  return made;
}

// The answer as an array of objects. User and password go into the address: a header would make the browser ask for leave first,
// which older servers do not answer.
async function ask(parameters, sql) {
  const address = new URL(parameters.url);
  if (parameters.user) {
    address.searchParams.set('user', parameters.user);
    address.searchParams.set('password', parameters.password);
  }
  const response = await fetch(address, {method: 'POST', body: bound(sql, parameters).trimEnd() + '\nFORMAT JSONCompact'});
  const text = await response.text();
  if (!response.ok) throw new Error(text.slice(0, 300));
  const {meta, data} = JSON.parse(text);
  return data.map((row) => Object.fromEntries(row.map((value, i) => [meta[i].name, /^U?Int/.test(meta[i].type) ? Number(value) : value])));
}

function tableOf(rows) {
  if (!rows.length) return element('p', {textContent: 'Nothing.'});
  const head = element('tr', {}, ...Object.keys(rows[0]).map((name) => element('th', {textContent: name.replaceAll('_', ' '), scope: 'col'})));
  const body = rows.slice(0, 1000).map((row) => element('tr', {}, ...Object.values(row).map(
    (value) => element('td', {textContent: value, className: typeof value === 'number' ? 'number' : ''}))));
  return element('div', {className: 'table', tabIndex: 0}, element('table', {}, element('thead', {}, head), element('tbody', {}, ...body)));
}

function chartOf(card, rows) {
  const canvas = element('canvas');
  canvas.setAttribute('role', 'img');
  canvas.setAttribute('aria-label', title(questions[card.question]));
  const datasets = Object.entries(card.values).map(([name, label], i) => ({label, data: rows.map((row) => row[name]), backgroundColor: colours[i]}));
  const data = {labels: rows.map((row) => row[card.label] || 'unknown'), datasets};
  const options = {
    animation: false,
    maintainAspectRatio: false,
    indexAxis: card.horizontal ? 'y' : 'x',
    plugins: {legend: {display: datasets.length > 1}},
    scales: {x: {stacked: true, ticks: {precision: 0}}, y: {stacked: true, ticks: {precision: 0, autoSkip: !card.horizontal}}},
  };
  // It takes its size from where it stands.
  queueMicrotask(() => { canvas.chart = new Chart(canvas, {type: 'bar', data, options}); });
  return element('div', {className: 'chart'}, canvas);
}

async function show(card, parameters) {
  const sql = questions[card.question];
  const section = element('section', {id: card.question}, element('h2', {textContent: title(sql)}));
  document.getElementById('cards').append(section);
  try {
    const rows = await ask(parameters, sql);
    const drawn = card.values && rows.length;
    if (drawn) section.append(chartOf(card, rows));
    section.append(drawn ? element('details', {}, element('summary', {textContent: 'Figures'}), tableOf(rows)) : tableOf(rows));
  } catch (error) {
    section.append(element('p', {className: 'problem', textContent: error.message}));
    throw error;
  } finally {
    section.append(element('details', {}, element('summary', {textContent: 'Question'}), element('pre', {textContent: bound(sql, parameters)})));
  }
}

async function showAll() {
  const parameters = Object.fromEntries(new FormData(form));
  for (const canvas of document.querySelectorAll('canvas')) canvas.chart?.destroy();
  document.getElementById('cards').replaceChildren();
  status.textContent = 'Asking ...';
  const results = await Promise.allSettled(cards.map((card) => show(card, parameters)));
  const failed = results.filter((result) => result.status === 'rejected').length;
  status.textContent = failed ? `${failed} of ${results.length} questions have no answer.` : `Answered at ${new Date().toLocaleTimeString()}.`;
  document.body.dataset.done = failed ? 'with trouble' : 'yes';
}

form.addEventListener('submit', (event) => {
  event.preventDefault();
  showAll();
});

// Whoever links here may fill in the form: page.html#url=...&user=... Nothing behind "#" is sent anywhere.
const given = {url: 'http://127.0.0.1:8123/', from: day(30), since: day(1), ...Object.fromEntries(new URLSearchParams(location.hash.slice(1)))};
history.replaceState(null, '', location.pathname);
for (const [name, value] of Object.entries(given)) if (form.elements[name]) form.elements[name].value = value;
if (given.user !== undefined) showAll();
