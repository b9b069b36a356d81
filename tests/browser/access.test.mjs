// The HTML model report's accessibility, in the browser browser.mjs opens:
// axe-core (from the local node_modules, injected into the page) audits the
// page against the WCAG 2 A and AA rules and the landmark rules, in each state
// a reader meets (the page as loaded, the predictions shown, a page without
// rules), and the keyboard alone reaches and works the filter, a column's sort
// button and the history box.
import { after, before, test } from 'node:test';
import assert from 'node:assert/strict';
import { createRequire } from 'node:module';
import { emptyReportUrl, launchBrowser, openReport, reportUrl } from './browser.mjs';

const axeScript = createRequire(import.meta.url).resolve('axe-core/axe.min.js');
const auditedTags = ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa', 'best-practice'];

let browser;
before(async () => {
  browser = await launchBrowser();
});

after(async () => {
  if (browser) await browser.close();
});

// What axe finds against the rules: its violations, and the checks it could
// not decide, one line per rule and element so a failure shows what to fix.
// The only undecided check allowed is contrast where axe cannot see the
// background (table cells scrolled under the sticky column buttons or out of
// their box, the values beside the support bars) or the text is a symbol (the
// sort arrow); their colours are those of the text it does check.
async function audit(page) {
  if (!(await page.evaluate(() => typeof window.axe === 'object'))) await page.addScriptTag({ path: axeScript });
  return page.evaluate(async (tags) => {
    const results = await window.axe.run(document, {
      runOnly: { type: 'tag', values: tags },
      resultTypes: ['violations', 'incomplete'],
    });
    const lines = (rules) => rules.flatMap((rule) =>
      rule.nodes.map((node) => `${rule.id} (${rule.impact}) at ${node.target.join(' ')}: ${node.failureSummary}`));
    return {
      violations: lines(results.violations),
      undecided: lines(results.incomplete.filter((rule) => rule.id !== 'color-contrast')),
      passed: results.passes.map((rule) => rule.id),
    };
  }, auditedTags);
}

async function assertClean(page) {
  const { violations, undecided, passed } = await audit(page);
  assert.deepEqual(violations, []);
  assert.deepEqual(undecided, []);
  for (const rule of ['color-contrast', 'label', 'landmark-one-main', 'region', 'skip-link'])
    assert.ok(passed.includes(rule), `axe did not check ${rule}`);
}

const focused = (page) =>
  page.evaluate(() => {
    const e = document.activeElement;
    const key = e.closest('th') ? e.closest('th').dataset.key : '';
    return { id: e.id, key, text: e.textContent, outline: getComputedStyle(e).outlineStyle };
  });

// Presses Tab until `wanted` holds for the focused element and returns how
// many presses it took; fails after `limit`.
async function tabUntil(page, wanted, limit) {
  for (let presses = 1; presses <= limit; ++presses) {
    await page.keyboard.press('Tab');
    if (wanted(await focused(page))) return presses;
  }
  assert.fail(`${limit} presses of Tab never reached it; focus is on ${JSON.stringify(await focused(page))}`);
}

// The states a reader meets: each is opened afresh, prepared and audited.
const auditedStates = [
  ['the page as loaded', reportUrl, async () => {}],
  ['the rules filtered and predictions shown', reportUrl, async (page) => {
    await page.type('#rule-filter', 'kettle');
    await page.type('#history', 'espresso machine, milk frother; coffee beans');
    assert.equal(await page.$eval('#predict-table', (e) => e.hidden), false);
  }],
  ['a page without rules', emptyReportUrl, async () => {}],
];

for (const [state, url, prepare] of auditedStates) {
  test(`axe finds no violation in ${state}`, async () => {
    const { page, problems } = await openReport(browser, url);
    await prepare(page);
    await assertClean(page);
    assert.deepEqual(problems, []);
    await page.close();
  });
}

// The audit sees what it is for: a filter without its label and grey on grey
// text fail it.
test('axe reports a field without a label and text of low contrast', async () => {
  const { page } = await openReport(browser, reportUrl);
  await page.evaluate(() => {
    document.querySelector('label[for="rule-filter"]').remove();
    document.getElementById('rule-count').style.color = '#c8ccd2';
  });
  const { violations } = await audit(page);
  assert.deepEqual(violations.map((line) => line.slice(0, line.indexOf(':'))),
    ['color-contrast (serious) at #rule-count', 'label (critical) at #rule-filter']);
  await page.close();
});

test('the keyboard alone filters, sorts and predicts', async () => {
  const { page, problems } = await openReport(browser, reportUrl);
  const sortOf = (key) => page.$eval(`#rules-head th[data-key="${key}"]`, (e) => e.getAttribute('aria-sort'));
  // The first stop is the link past the summary, to the rules.
  await page.keyboard.press('Tab');
  assert.equal((await focused(page)).text, 'Skip to the rules');
  await page.keyboard.press('Enter');
  assert.equal(await page.evaluate(() => location.hash), '#rules');

  assert.equal(await tabUntil(page, (e) => e.id === 'rule-filter', 5), 1);
  await page.keyboard.type('kettle');
  assert.equal(await page.$eval('#rule-count', (e) => e.textContent), '34 of 771 rules shown');

  // Past the scrolling table itself to its column buttons: focus shows.
  const toLift = await tabUntil(page, (e) => e.key === 'lift', 12);
  assert.equal(toLift, 8);
  assert.notEqual((await focused(page)).outline, 'none');
  await page.keyboard.press('Enter');
  assert.equal(await sortOf('lift'), 'descending');
  assert.equal(await sortOf('rank'), null);
  await page.keyboard.press(' ');
  assert.equal(await sortOf('lift'), 'ascending');
  const lifts = await page.$$eval('#rules-body tr td:nth-child(7)', (cells) => cells.map((c) => Number(c.textContent)));
  assert.equal(lifts.length, 34);
  for (let i = 1; i < lifts.length; ++i) assert.ok(lifts[i - 1] <= lifts[i], `row ${i}`);

  await tabUntil(page, (e) => e.id === 'history', 12);
  await page.keyboard.type('espresso machine, milk frother; coffee beans');
  await page.keyboard.press('Enter');
  assert.equal(await page.$eval('#predict-body tr:first-child td:nth-child(2)', (e) => e.textContent), 'coffee beans');
  // The Predict button and the frequent items' buttons follow the box.
  await page.$eval('#history', (e) => { e.value = ''; });
  assert.equal(await tabUntil(page, (e) => e.text === '+ coffee beans', 3), 2);
  await page.keyboard.press(' ');
  await tabUntil(page, (e) => e.text === '+ ground coffee', 1);
  await page.keyboard.press('Enter');
  assert.equal(await page.$eval('#history', (e) => e.value), 'coffee beans, ground coffee');
  assert.match(await page.$eval('#predict-note', (e) => e.textContent), /^\d+ items predicted\.$/);
  assert.deepEqual(problems, []);
  await page.close();
});
