// Opens the HTML model report in the browser run-report-test.sh chose, for the
// test files beside this one. BROWSER is "chromium" (Chrome DevTools
// Protocol) or "firefox" (WebDriver BiDi), BROWSER_PATH its executable; both
// are Debian's, puppeteer-core never downloads one. REPORT_HTML is the page
// and SCREENSHOT_DIR where pictures go.
import path from 'node:path';
import { pathToFileURL } from 'node:url';
import puppeteer from 'puppeteer-core';

export const browserName = process.env.BROWSER;
export const reportFile = process.env.REPORT_HTML;
export const reportUrl = pathToFileURL(reportFile).href;
export const emptyReportUrl = pathToFileURL(path.join(path.dirname(reportFile), 'report-empty.html')).href;
export const screenshot = (name) => path.join(process.env.SCREENSHOT_DIR, name);

const launchOptions = {
  chromium: { browser: 'chrome', args: ['--no-sandbox', '--disable-gpu', '--font-render-hinting=none'] },
  firefox: { browser: 'firefox' },
};

export async function launchBrowser() {
  const options = launchOptions[browserName];
  if (!options) throw new Error(`BROWSER is "${browserName}"; expected chromium or firefox`);
  return puppeteer.launch({ ...options, executablePath: process.env.BROWSER_PATH, headless: true, timeout: 60000 });
}

// A new 1366 x 900 tab that records script errors, console errors and every
// URL it asks for, showing `url` once the page's script has run.
export async function openReport(browser, url) {
  const page = await browser.newPage();
  const problems = [];
  const requests = [];
  page.setDefaultTimeout(20000);
  await page.setViewport({ width: 1366, height: 900 });
  page.on('pageerror', (error) => problems.push(`page error: ${error.message}`));
  page.on('console', (message) => {
    if (message.type() === 'error') problems.push(`console: ${message.text()}`);
  });
  page.on('request', (request) => requests.push(request.url()));
  await page.goto(url, { waitUntil: 'load' });
  await page.waitForSelector('body[data-ready="true"]');
  return { page, problems, requests };
}
