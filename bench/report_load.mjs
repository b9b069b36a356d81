// Opens each report given on the command line REPEAT times (default 5) in a
// fresh tab of headless Chromium and prints the page's size and the median
// time from navigation start to the end of the load event, which includes
// parsing the embedded data and rendering every part (the page's script runs
// before the load event). Run by bench/report_load.sh.
import { statSync } from 'node:fs';
import { pathToFileURL } from 'node:url';
import puppeteer from 'puppeteer-core';

const repeat = Number(process.env.REPEAT || 5);
const browser = await puppeteer.launch({
  executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
  headless: true,
  args: ['--no-sandbox', '--disable-gpu'],
});
const median = (values) => values.sort((a, b) => a - b)[Math.floor(values.length / 2)];
for (const file of process.argv.slice(2)) {
  const loads = [];
  const ready = [];
  for (let i = 0; i < repeat; ++i) {
    const page = await browser.newPage();
    await page.setViewport({ width: 1366, height: 900 });
    await page.goto(pathToFileURL(file).href, { waitUntil: 'load', timeout: 120000 });
    const timing = await page.evaluate(() => {
      const navigation = performance.getEntriesByType('navigation')[0];
      return { load: navigation.loadEventEnd, ready: navigation.domContentLoadedEventEnd };
    });
    loads.push(timing.load);
    ready.push(timing.ready);
    await page.close();
  }
  console.log(`${file}  ${(statSync(file).size / 1024).toFixed(1)} KiB  ` +
    `DOM ready ${median(ready).toFixed(0)} ms  load ${median(loads).toFixed(0)} ms ` +
    `(medians of ${repeat}; loads ${loads.map((x) => x.toFixed(0)).join(' ')})`);
}
await browser.close();
