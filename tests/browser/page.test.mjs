// Drives the development service's page in Chromium. Arguments: the service's program, the sign-in's, the browser's.
import assert from "node:assert/strict";
import { execFile, spawn } from "node:child_process";
import { once } from "node:events";
import { createServer } from "node:http";
import { after, afterEach, beforeEach, test as anyTest } from "node:test";
import { promisify } from "node:util";
import { chromium } from "playwright-core";

const [serviceProgram, signInProgram, executablePath] = process.argv.slice(2);
const mobile = "+447700900123";
const run = promisify(execFile);
const browser = await chromium.launch({ executablePath, args: ["--host-resolver-rules=MAP rebound.example 127.0.0.1"] });
after(() => browser.close());
const test = (name, body) => anyTest(name, { timeout: 60_000 }, body);

let service, url, page, complaints;

beforeEach(async () => {
  service = spawn(serviceProgram, ["--port", "0", "--quiet"]);
  const [line] = await once(service.stdout, "data");
  [url] = String(line).match(/http:\S+/);
  page = await browser.newPage({ viewport: { width: 375, height: 812 } });
  page.setDefaultTimeout(20_000);
  complaints = [];
  page.on("console", (message) => complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("request", (request) => request.url().startsWith(url) || complaints.push(request.url()));
  await page.goto(url);
  await shows("Live");
});

afterEach(async () => {
  await page.close();
  service.kill();
});

const shows = (text) => page.getByText(text, { exact: true }).waitFor();
const numberNamed = (name) => page.getByRole("article").filter({ has: page.getByRole("heading", { name }) });

async function signIn(...options) {
  const all = ["--connect", new URL(url).host, "--mobile", mobile, ...options];
  return run(signInProgram, all).then(() => "done", (error) => error.stderr);
}

/** The calls of a sign-in one after another. */
async function* calls() {
  const known = async () => (await (await fetch(`${url}/inspect`)).json())[mobile];
  yield await signIn("--only=picture", "--client-id=an app");
  yield await signIn("--only=code", "--captcha", (await known()).picture);
  yield await signIn("--only=login", "--code", (await known()).code);
}

test("a sign-in appears as it goes on", async () => {
  const steps = calls();
  const card = numberNamed(mobile);
  await steps.next();
  await card.getByText("Picture sent").waitFor();
  await card.getByText("an app").waitFor();
  await page.waitForFunction(() => document.querySelector("article img").naturalWidth === 160);
  await steps.next();
  await page.getByRole("log").getByText(/your sign-in code is \d{6}\./).waitFor();
  assert.match(await page.getByRole("log").innerText(), /to \+447700900123/);
  await steps.next();
  await card.getByText("Signed in").waitFor();
  for (const fact of ["deviceModel", "carrier", "deviceName", "IMEI", "IMSI"]) {
    await card.getByText(fact, { exact: true }).waitFor();
  }
  for (const path of ["verify/captcha", "getVerifyCode", "submitVerifyCode", "submitMobileInformation"]) {
    await shows(`POST /tenant/${path}`);
  }
  assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 375);
  service.kill();
  await shows("Not reachable");
  assert.deepEqual(complaints.filter((text) => !text.includes("ERR_CONNECTION")), []);
});

test("text from a request is shown as text", async () => {
  const markup = (name) => `<script>hit = "${name}"</script><img src=x onerror="hit = 1">`;
  await signIn("--only=picture", "--mobile", markup("number"));
  await signIn("--only=picture", "--client-id", markup("client"));
  await fetch(`${url}/${markup("path")}`);
  for (const name of ["number", "client", "path"]) await page.getByText(markup(name)).first().waitFor();
  assert.equal(await page.evaluate(() => window.hit), undefined);
  assert.equal(await page.locator("body script, [onerror]").count(), 0);
  assert.deepEqual(complaints, []);
});

test("a fault is chosen by keyboard and used up by the next call", async () => {
  for await (const step of calls()) assert.equal(step, "done");
  await numberNamed(mobile).getByText("Signed in").waitFor();
  const passed = [];
  let name;
  do {
    await page.keyboard.press("Tab");
    name = await page.evaluate(() => document.activeElement.textContent);
    passed.push(await page.evaluate(() => document.activeElement.id || document.activeElement.className));
    assert.notEqual(await page.evaluate(() => getComputedStyle(document.activeElement).outlineStyle), "none");
  } while (name !== "refused");
  assert.deepEqual(passed.slice(0, 3), ["messages", "code", ""]);
  await page.keyboard.press("Enter");
  const button = (name, pressed) => page.getByRole("button", { name, exact: true, pressed }).waitFor();
  await button("refused", true);
  await shows("Next: the call is refused with code 4321.");
  assert.match(await signIn("--only=picture"), /4321/);
  await button("none", true);
  await button("refused", false);
  assert.equal(await signIn("--only=picture"), "done");
});

test("text can be read in light and in dark", async () => {
  for await (const step of calls()) assert.equal(step, "done");
  await numberNamed(mobile).getByText("Signed in").waitFor();
  const grounds = new Set();
  for (const colorScheme of ["light", "dark"]) {
    await page.emulateMedia({ colorScheme });
    const faint = await page.evaluate(() => {
      const parts = (colour) => colour.match(/[\d.]+/g).map(Number);
      const light = (value) => (value / 255 <= 0.04045 ? value / 255 / 12.92 : ((value / 255 + 0.055) / 1.055) ** 2.4);
      const luminance = ([r, g, b]) => 0.2126 * light(r) + 0.7152 * light(g) + 0.0722 * light(b);
      const ground = (element) => {
        const colour = parts(getComputedStyle(element).backgroundColor);
        return colour[3] === 0 ? ground(element.parentElement) : colour;
      };
      return [...document.querySelectorAll("body *")].filter((element) => {
        const texts = [...element.childNodes].some((node) => node.nodeType === Node.TEXT_NODE && node.data.trim());
        const [a, b] = [luminance(parts(getComputedStyle(element).color)), luminance(ground(element))];
        return texts && (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05) < 4.5;
      }).map((element) => element.outerHTML);
    });
    assert.deepEqual(faint, []);
    grounds.add(await page.evaluate(() => getComputedStyle(document.body).backgroundColor));
  }
  assert.equal(grounds.size, 2);
});

test("other sites in the same browser learn and change nothing", async () => {
  const reply = await fetch(url);
  assert.match(reply.headers.get("content-security-policy"), /default-src 'none'/);
  assert.equal(reply.headers.get("cache-control"), "no-store");
  const site = createServer((_, answer) => answer.setHeader("Content-Type", "text/html").end("<title>Other</title>"));
  await new Promise((listening) => site.listen(0, "127.0.0.1", listening));
  const other = await browser.newPage();
  await other.goto(`http://127.0.0.1:${site.address().port}`);
  const outcomes = await other.evaluate(async (url) => {
    const outcome = (path, options) => fetch(url + path, options).then((reply) => reply.text(), () => "refused");
    return [await outcome("/inspect"), await outcome("/page/state"), await outcome("/page/state", { mode: "no-cors" }),
      await outcome("/page/fault", { method: "POST", mode: "no-cors", body: '{"fault":8}' })];
  }, url);
  assert.deepEqual(outcomes, Array(4).fill("refused"));
  const port = new URL(url).port;
  for (const path of ["", "inspect", "page/state"]) {
    assert.equal((await other.goto(`http://rebound.example:${port}/${path}`)).status(), 403);
  }
  assert.equal(await signIn("--only=picture"), "done");
  await other.close();
  site.close();
});
