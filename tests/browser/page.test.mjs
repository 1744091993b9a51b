// Drives the development service's page in Chromium.
// Arguments: the programs of the service, of the sign-in and of the browser.
import assert from "node:assert/strict";
import { execFile, spawn } from "node:child_process";
import { once } from "node:events";
import { createRequire } from "node:module";
import { mkdtemp, readFile, rm } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, afterEach, beforeEach, test as anyTest } from "node:test";
import { promisify } from "node:util";
import { Validator } from "@seriousme/openapi-schema-validator";
import Ajv from "ajv";
import Ajv2020 from "ajv/dist/2020.js";
import addFormats from "ajv-formats";
import harSchemas from "har-schema";
import { chromium } from "playwright-core";

const [serviceProgram, signInProgram, executablePath] = process.argv.slice(2);
const mobile = "+447700900123";
const run = promisify(execFile);
const browser = await chromium.launch({ executablePath });
after(() => browser.close());
const test = (name, body) => anyTest(name, { timeout: 300_000 }, body);

const require = createRequire(import.meta.url);
const ajv = addFormats(new Ajv({ strict: false }))
  .addMetaSchema(require("ajv/dist/refs/json-schema-draft-06.json")).addSchema(Object.values(harSchemas));

/** Checks a HAR file, and returns its entries. */
function checkHar(text) {
  const har = JSON.parse(text);
  assert.ok(ajv.validate("har.json#", har), ajv.errorsText());
  return har.log.entries;
}

let service, url, page, complaints;

async function startService(port, ...options) {
  service = spawn(serviceProgram, ["--port", port, "--quiet", ...options]);
  const [line] = await once(service.stdout, "data");
  [url] = String(line).match(/http:\S+/);
}

beforeEach(async () => {
  await startService("0");
  page = await browser.newPage({ viewport: { width: 375, height: 812 } });
  page.setDefaultTimeout(60_000);
  complaints = [];
  page.on("console", (message) => complaints.push(message.text()));
  page.on("pageerror", (error) => complaints.push(String(error)));
  page.on("request", (request) => request.url().startsWith(url) || complaints.push(request.url()));
  await page.goto(url);
  await shows("Live");
});

afterEach(async () => {
  await page.close();
  service.kill("SIGKILL"); // Also ends a stopped one.
});

const shows = (text) => page.getByText(text, { exact: true }).waitFor();
const numberNamed = (name) => page.getByRole("article").filter({ has: page.getByRole("heading", { name }) });

async function signIn(...options) {
  const all = ["--connect", new URL(url).host, "--mobile", mobile, ...options];
  return run(signInProgram, all).then(() => "done", (error) => error.stderr);
}

const known = async (mobile) => (await fetch(`${url}/inspect?mobile=${mobile}`)).json();

/** Makes the service send a text message to the number. */
async function sendMessage(mobile) {
  const headers = { "Content-Type": "application/json", "XRAPI-VERSION": "1.0", "XRAPI-DEVICE-TYPE": "1" };
  const call = (path, body) =>
    fetch(`${url}/tenant/${path}`, { method: "POST", headers, body: JSON.stringify(body) });
  await call("verify/captcha", { mobile });
  await call("getVerifyCode", { mobile, captcha: (await known(mobile)).picture });
}

/** Yields the outcome of each call of a sign-in. */
async function* calls() {
  yield await signIn("--only=picture", "--client-id=an app");
  yield await signIn("--only=code", "--captcha", (await known(mobile)).picture);
  yield await signIn("--only=login", "--code", (await known(mobile)).code);
}

test("a sign-in appears as it goes on", async () => {
  const steps = calls();
  const card = numberNamed(mobile);
  await steps.next();
  await card.getByText("Picture sent").waitFor();
  await card.getByText("an app").waitFor();
  await page.waitForFunction(() => document.querySelector("article img").naturalWidth === 160);
  // What is selected in the card stays selected while the card goes on, and moves before another.
  await signIn("--only=picture", "--mobile=10000");
  await page.locator("article").nth(1).filter({ hasText: mobile }).waitFor();
  await card.getByRole("heading").evaluate((heading) => getSelection().selectAllChildren(heading));
  await steps.next();
  await page.getByRole("log").getByText(/your sign-in code is \d{6}\./).waitFor();
  assert.match(await page.getByRole("log").innerText(), /to \+447700900123/);
  await steps.next();
  await card.getByText("Signed in").waitFor();
  await page.locator("article").first().filter({ hasText: mobile }).waitFor();
  assert.equal(await page.evaluate(() => String(getSelection())), mobile);
  await page.locator(".bubble .used").waitFor();
  for (const fact of ["deviceModel", "carrier", "deviceName", "IMEI", "IMSI"]) {
    await card.getByText(fact, { exact: true }).waitFor();
  }
  for (const path of ["verify/captcha", "getVerifyCode", "submitVerifyCode", "submitMobileInformation"]) {
    await page.getByText(`POST /tenant/${path}`).first().waitFor();
  }
  assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 375);
  assert.deepEqual(complaints, []);
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
  assert.deepEqual(passed.slice(0, 5), ["messages", "copy used", "caller", "call", "requests"]);
  await page.keyboard.press("Enter");
  const button = (name, pressed) => page.getByRole("button", { name, exact: true, pressed }).waitFor();
  await button("refused", true);
  await shows("Next: the call is refused with code 4321.");
  assert.match(await signIn("--only=picture"), /4321/);
  await button("none", true);
  await button("refused", false);
  assert.equal(await signIn("--only=picture"), "done");
  await page.getByLabel("Hits").selectOption("every call");
  await page.getByRole("button", { name: "late", exact: true }).click();
  await page.getByLabel("Late by").fill("10");
  await page.getByLabel("Late by").press("Enter");
  await shows("Every call: the reply is delayed by 1.5 s, or by the delay that was chosen.");
  for (let count = 0; count < 2; ++count) await sendMessage(mobile);
  await page.getByText("delayed · code sent").nth(1).waitFor();
  await button("late", true);
});

test("a request tells its members and is copied as a command", async () => {
  await page.context().grantPermissions(["clipboard-read", "clipboard-write"]);
  await sendMessage(mobile);
  const row = page.getByRole("listitem").filter({ hasText: "POST /tenant/getVerifyCode" });
  await row.getByText(/^\d+ ms$/).waitFor();
  await row.locator("summary").click();
  assert.deepEqual(await row.locator("dd").first().innerText(), mobile);
  // On a page of another machine without TLS there is no navigator.clipboard.
  for (const isMissing of [false, true]) {
    await page.evaluate(async (isMissing) => {
      window.clipboard ??= navigator.clipboard;
      await window.clipboard.writeText("nothing");
      if (isMissing) Object.defineProperty(navigator, "clipboard", { value: undefined });
    }, isMissing);
    await row.getByRole("button").click();
    await page.waitForFunction(async () => await window.clipboard.readText() !== "nothing");
    assert.match(await page.evaluate(() => window.clipboard.readText()),
      /^curl -X 'POST' -H .*"mobile":"\+447700900123","captcha":"\*\*\*".*getVerifyCode'$/);
  }
  await row.locator(".copied").waitFor();
  assert.deepEqual(complaints, []);
});

test("requests are filtered and saved, without secrets unless asked", async () => {
  for await (const step of calls()) assert.equal(step, "done");
  await sendMessage("10000");
  const rows = page.locator("#requests > li");
  await rows.nth(5).waitFor();
  await page.getByLabel("Requests of the number").fill("4477");
  await page.waitForFunction(() => document.querySelector("#requests").childElementCount === 4);
  await page.getByLabel("Requests of the call").selectOption("login");
  await page.waitForFunction(() => document.querySelector("#requests").childElementCount === 1);
  await page.getByLabel("Requests of the call").selectOption("all");
  for (const isMasked of [true, false]) {
    await page.getByLabel("with numbers, codes and identifiers").setChecked(!isMasked);
    const download = page.waitForEvent("download");
    await page.getByRole("button", { name: "Save as HAR" }).click();
    const text = await readFile(await (await download).path(), "utf8");
    assert.equal(checkHar(text).length, 4);
    for (const secret of ["447700900123", "an app"]) assert.equal(text.includes(secret), !isMasked);
  }
  assert.deepEqual(complaints, []);
});

test("the sign-in saves a file that a reader understands", async () => {
  const folder = await mkdtemp(join(tmpdir(), "orvane-har-"));
  const file = join(folder, "orvane.har");
  assert.equal(await signIn("--auto", "--client-id=cl1ent", "--har", file), "done");
  const text = await readFile(file, "utf8");
  assert.equal(checkHar(text).length, 4);
  for (const secret of ["447700900123", "cl1ent"]) assert.ok(!text.includes(secret), secret);
  // The browser's driver reads the file, and answers a page's requests from it.
  const reader = await browser.newPage();
  await reader.route("http://identity.orvane.example/", (route) => route.fulfill({ body: "" }));
  await reader.routeFromHAR(file, { url: "**/tenant/**" });
  await reader.goto("http://identity.orvane.example/");
  const reply = await reader.evaluate(async () => {
    const sent = { method: "POST", body: '{"mobile":"***"}' };
    return (await fetch("/tenant/verify/captcha", sent)).json();
  });
  assert.equal(reply.msg, "picture sent");
  await reader.close();
  await rm(folder, { recursive: true });
});

test("the calls are as the service describes them", async () => {
  const description = await (await fetch(`${url}/openapi.json`)).json();
  const { valid, errors } = await new Validator().validate(structuredClone(description));
  assert.ok(valid, JSON.stringify(errors));
  for await (const step of calls()) assert.equal(step, "done");
  await signIn("--only=code", "--captcha=no");
  const schemas = new Ajv2020({ strict: false }).addSchema(description, "service");
  const check = (path, value) => {
    const place = path.map((step) => step.replaceAll("~", "~0").replaceAll("/", "~1")).join("/");
    assert.ok(schemas.validate({ $ref: `service#/${place}` }, value), schemas.errorsText());
  };
  const asked = await (await fetch(`${url}/inspect/requests?unmasked=1`)).json();
  assert.equal(asked.length, 5);
  for (const { path, members } of asked) {
    check(["paths", path, "post", "requestBody", "content", "application/json", "schema"], members);
    const { $ref } = description.paths[path].post.responses[200];
    const replySchema = [...$ref.split("/").slice(1), "content", "application/json", "schema"];
    const headers = { "Content-Type": "application/json", "XRAPI-VERSION": "1.0", "XRAPI-DEVICE-TYPE": "1" };
    const reply = await fetch(`${url}${path}`, { method: "POST", headers, body: JSON.stringify(members) });
    check(replySchema, await reply.json());
  }
});

test("a reader who scrolled up stays there, and numbers are filtered and forgotten", async () => {
  for (let count = 0; count < 9; ++count) await sendMessage(`1000${count % 3}`);
  const log = page.getByRole("log");
  await log.getByRole("listitem").nth(8).waitFor();
  assert.ok(await log.evaluate((box) => box.scrollTop + box.clientHeight >= box.scrollHeight - 1));
  assert.ok(await log.evaluate((box) => box.scrollTop > 0));
  await log.evaluate((box) => box.scrollTo(0, 0));
  await sendMessage("10000");
  await log.getByRole("listitem").nth(9).waitFor();
  assert.equal(await log.evaluate((box) => box.scrollTop), 0);
  await shows("3 of 3 shown");
  await page.getByLabel("Filter numbers").fill("02");
  await shows("1 of 3 shown");
  await numberNamed("10002").waitFor();
  await page.getByRole("button", { name: "Forget everything" }).click();
  await shows("No number has made a call");
  assert.equal(await page.getByRole("listitem").count(), 0);
});

test("a restart takes what is gone from the page, but not what is typed", async () => {
  await sendMessage(mobile);
  const code = page.getByRole("log").getByRole("button");
  await code.waitFor();
  await page.getByLabel("Filter numbers").focus();
  await page.keyboard.type("44");
  service.kill("SIGSTOP");
  await shows("No answer in 3 s");
  service.kill("SIGKILL");
  await shows("Not reachable");
  await page.keyboard.type("77");
  await startService(new URL(url).port, "--code=482913", "--picture-text=AB3DE", "--seed=7");
  await shows("Live");
  await shows("Every code is 482913. Every picture says AB3DE. Random choices start from seed 7.");
  await page.keyboard.type("00");
  assert.equal(await page.getByLabel("Filter numbers").inputValue(), "447700");
  await sendMessage(mobile);
  const { code: current } = await known(mobile);
  await page.getByRole("log").getByRole("button", { name: current }).waitFor();
  assert.equal(await code.count(), 1);
  assert.equal(await code.innerText(), current);
});

test("the page is accessible in light and in dark", async () => {
  for await (const step of calls()) assert.equal(step, "done");
  await numberNamed(mobile).getByText("Signed in").waitFor();
  await page.locator("#requests summary").first().click();
  await page.evaluate(await readFile("node_modules/axe-core/axe.min.js", "utf8"));
  const grounds = new Set();
  for (const colorScheme of ["light", "dark"]) {
    await page.emulateMedia({ colorScheme });
    const { violations } = await page.evaluate(() => axe.run());
    assert.deepEqual(violations.map(({ id, nodes }) => [id, nodes.map(({ html }) => html)]), []);
    grounds.add(await page.evaluate(() => getComputedStyle(document.body).backgroundColor));
  }
  assert.equal(grounds.size, 2);
});
