// The HTML model report in a real browser: Debian's headless Chromium or
// Firefox (browser.mjs), driven through puppeteer-core, opens the page from
// disk and the tests check what it renders and how it answers clicks and
// typing. run-report-test.sh makes the report and runs this file once per
// browser.
import { after, before, test } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync, writeFileSync } from 'node:fs';
import { pathToFileURL } from 'node:url';
import { browserName, emptyReportUrl, launchBrowser, openReport, reportFile, reportUrl, screenshot } from './browser.mjs';

let browser;
let page;
let problems;   // script errors and console errors
let requests;   // every URL the page asked for

before(async () => {
  browser = await launchBrowser();
  ({ page, problems, requests } = await openReport(browser, reportUrl));
});

after(async () => {
  if (browser) await browser.close();
});

const ruleRows = () => page.$$eval('#rules-body tr', (rows) => rows.length);
const columnTexts = (column) =>
  page.$$eval(`#rules-body tr td:nth-child(${column})`, (cells) => cells.map((c) => c.textContent));
const embedded = () =>
  page.evaluate(() => JSON.parse(document.getElementById('report-data').textContent));

test('the page loads from disk, fetches nothing and logs no script error', async () => {
  // Firefox does not report the load of a file: page itself, so only what
  // the page asks for beyond it counts; the resource timings list it too.
  assert.deepEqual(requests.filter((url) => url !== reportUrl), []);
  assert.deepEqual(await page.evaluate(() => performance.getEntriesByType('resource').map((e) => e.name)), []);
  assert.deepEqual(problems, []);
  assert.equal(await page.title(), 'sample.model · model report');
});

test('the summary and the frequent items show the model', async () => {
  const lede = await page.$eval('#lede', (e) => e.textContent);
  assert.equal(lede, '600 customers, 838 patterns, 771 rules (the 771 strongest are in this page)');
  const first = await page.$$eval('#items-body tr:first-child td', (cells) => cells.map((c) => c.textContent));
  assert.deepEqual(first, ['coffee beans', '463', '0.7717']);
});

test('the rules table shows every embedded rule, strongest first', async () => {
  const data = await embedded();
  assert.equal(data.rules.rows.length, 771);
  assert.equal(await ruleRows(), 771);
  assert.equal(await page.$eval('#rule-count', (e) => e.textContent), '771 of 771 rules shown');
  const heads = await page.$$eval('#rules-head th', (cells) => cells.map((c) => c.textContent));
  assert.deepEqual(heads, ['# \u25b2', 'antecedent', 'consequent', 'support', 'confidence', 'cause', 'lift']);
  const firstRow = await page.$$eval('#rules-body tr:first-child td', (cells) => cells.map((c) => c.textContent));
  assert.deepEqual(firstRow, ['1', '(espresso machine, paper filters)', '(coffee beans)',
    '0.0417', '0.8065', '0.0540', '1.0451']);
});

test('a column button sorts by its measure, then reverses', async () => {
  await page.click('#rules-head th[data-key="lift"] button');
  assert.equal(await page.$eval('#rules-head th[data-key="lift"]', (e) => e.getAttribute('aria-sort')), 'descending');
  let lifts = (await columnTexts(7)).map(Number);
  assert.equal(lifts.length, 771);
  assert.equal(lifts[0], 5.2579);
  for (let i = 1; i < lifts.length; ++i) assert.ok(lifts[i - 1] >= lifts[i], `row ${i}`);
  await page.click('#rules-head th[data-key="lift"] button');
  assert.equal(await page.$eval('#rules-head th[data-key="lift"]', (e) => e.getAttribute('aria-sort')), 'ascending');
  lifts = (await columnTexts(7)).map(Number);
  for (let i = 1; i < lifts.length; ++i) assert.ok(lifts[i - 1] <= lifts[i], `row ${i}`);
  // The focus stays on the button, so the keyboard can sort again.
  assert.equal(await page.evaluate(() => document.activeElement.textContent), 'lift \u25b2');
  await page.keyboard.press('Enter');
  assert.equal(await page.$eval('#rules-head th[data-key="lift"]', (e) => e.getAttribute('aria-sort')), 'descending');
  await page.click('#rules-head th[data-key="support"] button');
  const supports = (await columnTexts(4)).map(Number);
  assert.equal(supports[0], Math.max(...supports));
  await page.click('#rules-head th[data-key="rank"] button');
});

test('typing in the filter keeps the rules naming the item', async () => {
  await page.type('#rule-filter', 'kettle');
  const data = await embedded();
  const kettle = data.items.findIndex((label) => label === 'gooseneck kettle');
  const expected = data.rules.rows.filter((row) => row[0].concat(row[1]).some((set) => set.includes(kettle))).length;
  assert.equal(expected, 34);
  assert.equal(await ruleRows(), expected);
  assert.equal(await page.$eval('#rule-count', (e) => e.textContent), `${expected} of 771 rules shown`);
  const texts = await page.$$eval('#rules-body tr', (rows) => rows.map((r) => r.textContent));
  for (const text of texts) assert.match(text, /kettle/);
  await (await page.$('#rules')).screenshot({ path: screenshot('report-filtered.png') });
  assert.equal(await page.$eval('#rules-scroll', (e) => e.hidden), false);
  await page.type('#rule-filter', ' grinder');
  assert.equal(await page.$eval('#rule-count', (e) => e.textContent), '0 of 771 rules shown');
  assert.equal(await page.$eval('#rules-scroll', (e) => e.hidden), true);
  await page.$eval('#rule-filter', (e) => { e.value = ''; e.dispatchEvent(new Event('input')); });
  assert.equal(await ruleRows(), 771);
  assert.equal(await page.$eval('#rules-scroll', (e) => e.hidden), false);
});

test('a history typed into the page gets its next items', async () => {
  await page.type('#history', 'espresso machine, milk frother; coffee beans');
  const rows = await page.$$eval('#predict-body tr', (trs) =>
    trs.map((tr) => Array.from(tr.children, (td) => td.textContent)));
  assert.deepEqual(rows[0], ['1', 'coffee beans', '0.6897', '0.8937',
    '(espresso machine) \u21d2 (coffee beans)']);
  assert.deepEqual(rows[1], ['2', 'espresso cups', '0.6528', '2.4177',
    '(espresso machine, milk frother) \u21d2 (espresso cups)']);
  assert.equal(await page.$eval('#predict-note', (e) => e.textContent), `${rows.length} items predicted.`);
  await page.$eval('#history', (e) => { e.value = 'no such thing'; e.dispatchEvent(new Event('input')); });
  assert.equal(await page.$eval('#predict-note', (e) => e.textContent),
    'No rule in this page names no such thing. Type some items to see what customers bought next.');
  assert.equal(await page.$eval('#predict-table', (e) => e.hidden), true);
  await page.$eval('#history', (e) => { e.value = ''; });
  await page.type('#history', 'pour-over dripper, paper filters');
});

test('the journeys picture draws the rules around the chosen item', async () => {
  assert.equal(await page.$eval('#journey-item', (e) => e.selectedOptions[0].textContent), 'honey');
  await page.select('#journey-item', await page.$eval('#journey-item',
    (e) => Array.from(e.options).find((o) => o.textContent === 'gooseneck kettle').value));
  const edges = await page.$$eval('#journey-svg path', (paths) => paths.length);
  const caption = await page.$eval('#journey-caption', (e) => e.textContent);
  assert.match(caption, /^The 31 strongest rules by lift that lead to gooseneck kettle \(left, blue\) and the 3 that follow it/);
  assert.equal(edges, 34);
  // At 1366 pixels nothing runs off the side of the page (its width is 1366
  // less Firefox's scroll bar).
  const { scrollWidth, clientWidth } = await page.evaluate(() => {
    const root = document.documentElement;
    return { scrollWidth: root.scrollWidth, clientWidth: root.clientWidth };
  });
  assert.equal(clientWidth, browserName === 'firefox' ? 1354 : 1366);
  assert.equal(scrollWidth, clientWidth);
  await page.evaluate(() => { document.activeElement.blur(); window.scrollTo(0, 0); });
  await page.screenshot({ path: screenshot('report.png') });
  await (await page.$('#journeys')).screenshot({ path: screenshot('report-journeys.png') });
  await (await page.$('#next')).screenshot({ path: screenshot('report-next.png') });
  await page.select('#journey-measure', 'confidence');
  assert.match(await page.$eval('#journey-caption', (e) => e.textContent), /by confidence/);
  assert.deepEqual(problems, []);
});

// The model of the sample records no times between orders; a page whose rules
// carry them (as the data's hasTime and each row's [mean, min, max] say)
// shows and sorts a time column.
test('rules that carry a time to consequent get a sortable time column', async () => {
  const html = readFileSync(reportFile, 'utf8');
  const open = '<script type="application/json" id="report-data">';
  const begin = html.indexOf(open) + open.length;
  const end = html.indexOf('</script>', begin);
  const data = JSON.parse(html.slice(begin, end));
  data.hasTime = true;
  data.timeUnit = 'days';
  data.rules.rows[0][6] = [3.5, 1, 9];
  data.rules.rows[1][6] = [12, 2, 30];
  const timed = screenshot('report-timed.html');
  writeFileSync(timed, html.slice(0, begin) + JSON.stringify(data).replace(/</g, '\\u003c') + html.slice(end));
  const { page: page2, problems: errors } = await openReport(browser, pathToFileURL(timed).href);
  const heads = await page2.$$eval('#rules-head th', (cells) => cells.map((c) => c.textContent));
  assert.equal(heads[7], 'time to consequent (days)');
  await page2.click('#rules-head th[data-key="time"] button');
  const first = await page2.$$eval('#rules-body tr', (rows) => rows.slice(0, 3).map((r) => {
    const cell = r.children[7];
    return [r.children[0].textContent, cell.textContent, cell.title];
  }));
  assert.deepEqual(first, [['2', '12', 'from 2 to 30'], ['1', '3.5', 'from 1 to 9'], ['3', '', '']]);
  assert.deepEqual(errors, []);
  await page2.close();
});

test('a page without rules says so and logs no script error', async () => {
  const { page: page3, problems: errors } = await openReport(browser, emptyReportUrl);
  assert.equal(await page3.$eval('#rule-count', (e) => e.textContent), '0 of 0 rules shown');
  assert.equal(await page3.$eval('#rules-scroll', (e) => e.hidden), true);
  assert.equal(await page3.$eval('#journey-caption', (e) => e.textContent),
    "The model has no rules within the report's bounds.");
  await page3.type('#history', 'coffee beans');
  assert.equal(await page3.$eval('#predict-note', (e) => e.textContent), 'No rule in this page starts with this history.');
  assert.deepEqual(errors, []);
  await page3.close();
});
