"use strict";

// Text from a request only ever becomes a text node, never markup.

const period = 500; // Milliseconds between two requests for the state.
const patience = 3000; // Milliseconds after which a request is given up.
const byId = (id) => document.getElementById(id);
const clock = new Intl.DateTimeFormat(undefined,
  { hour: "2-digit", minute: "2-digit", second: "2-digit", hourCycle: "h23" });

function make(tag, className, ...children) {
  const element = document.createElement(tag);
  if (className) element.className = className;
  element.append(...children);
  return element;
}

/** Sets an element's text, unless it has that text already, so that a selection in it is kept. */
function say(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

/**
 * Copies the text. A browser gives `navigator.clipboard` only to pages of its own machine and of https. On
 * others, such as http://192.168.0.7:8080, copies from a field that exists for a moment.
 */
async function copyText(text) {
  if (navigator.clipboard) return navigator.clipboard.writeText(text);
  const focused = document.activeElement;
  const field = make("textarea");
  field.value = text;
  document.body.append(field);
  field.focus({ preventScroll: true });
  field.select();
  const isCopied = document.execCommand("copy");
  field.remove();
  focused.focus({ preventScroll: true });
  if (!isCopied) throw new Error("The browser has refused to copy");
}

/** Returns a button that copies the result of `text()` when it is clicked. */
function copyButton(className, label, text) {
  const button = make("button", className, label);
  button.type = "button";
  button.title = "Copy";
  button.addEventListener("click", async () => {
    await copyText(text());
    button.classList.add("copied");
    setTimeout(() => button.classList.remove("copied"), 2000);
  });
  return button;
}

/** Returns true if the element contains the focus or a part of the selection. */
function isInUse(element) {
  const selection = getSelection();
  const isSelected = !selection.isCollapsed && selection.containsNode(element, true);
  return isSelected || element.contains(document.activeElement);
}

/** Makes a list show these entries. An entry already shown keeps its element, which updates itself. */
function follow(list, entries, makeEntry) {
  const known = new Map([...list.children].map((element) => [element.dataset.id, element]));
  const elements = entries.map((entry) => {
    const element = known.get(String(entry.id)) ?? makeEntry(entry);
    known.delete(String(entry.id));
    element.dataset.id = entry.id;
    element.update(entry);
    return element;
  });
  for (const element of known.values()) element.remove();
  // An element that is moved loses focus and selection. So the one that has them stays, and others move.
  const fixed = elements.findIndex((element) => element.isConnected && isInUse(element));
  for (let i = fixed - 1; i >= 0; --i) {
    if (elements[i].nextSibling !== elements[i + 1]) list.insertBefore(elements[i], elements[i + 1]);
  }
  for (let i = fixed + 1; i < elements.length; ++i) {
    const place = i === 0 ? list.firstChild : elements[i - 1].nextSibling;
    if (place !== elements[i]) list.insertBefore(elements[i], place);
  }
}

function messageBubble({ time, mobile, text }) {
  const [before, code, after] = text.split(/(\d{6})/);
  const bubble = make("p", "bubble", before);
  const copy = code && copyButton("copy", code, () => code);
  if (copy) bubble.append(copy, after);
  const element = make("li", "", make("p", "quiet", `to ${mobile} · ${clock.format(time)}`), bubble);
  element.update = ({ waits }) => {
    copy?.classList.toggle("used", !waits);
    if (copy) copy.title = waits ? "Copy" : "Used or expired";
  };
  return element;
}

function showMessages(messages) {
  const scroller = byId("messages");
  const list = scroller.querySelector("ol");
  const newest = list.lastChild;
  const isAtEnd = scroller.scrollHeight - scroller.scrollTop - scroller.clientHeight < 40;
  follow(list, messages, messageBubble);
  for (const element of scroller.querySelectorAll(".empty")) element.hidden = messages.length > 0;
  if (list.lastChild !== newest && isAtEnd) scroller.scrollTop = scroller.scrollHeight;
}

function stage(number) {
  if (number.code !== null) return "Code sent";
  if (number.signedIn) return "Signed in";
  return number.pictureWaits ? "Picture sent" : "Known";
}

function factRow({ id }) {
  const value = make("dd");
  const row = make("div", "", make("dt", "", id), value);
  row.update = ({ text }) => {
    value.className = text.trim() ? "" : "quiet";
    say(value, text.trim() ? text : "blank");
  };
  return row;
}

function numberCard({ id }) {
  const stageText = make("span", "stage");
  const picture = make("img");
  picture.width = 160;
  picture.height = 60;
  const pictureText = copyButton("copy", "", () => pictureText.textContent);
  const code = copyButton("copy", "", () => code.textContent);
  const secrets = make("p", "secrets", picture, pictureText, code);
  const facts = make("dl");
  const card = make("article", "",
    make("header", "", make("h3", "", copyButton("copy number", id, () => id)), stageText), secrets, facts);
  card.update = (number) => {
    card.dataset.stage = stage(number);
    say(stageText, stage(number));
    const { drawing } = number;
    for (const element of [picture, pictureText]) element.hidden = !drawing;
    if (drawing && picture.dataset.seed !== String(drawing.seed)) {
      picture.dataset.seed = drawing.seed;
      picture.src = `/page/picture/${encodeURIComponent(id)}?${drawing.seed}`;
      picture.alt = `The last picture: ${drawing.text}`;
    }
    if (drawing) say(pictureText, drawing.text);
    pictureText.classList.toggle("used", !number.pictureWaits);
    code.hidden = number.code === null;
    if (number.code !== null) say(code, number.code);
    const { mobile, ...rows } = number.facts ?? {};
    if (number.clientId !== null) rows["XRAPI-CLIENT-ID"] = number.clientId;
    follow(facts, Object.entries(rows).map(([name, text]) => ({ id: name, text })), factRow);
  };
  return card;
}

function showNumbers(numbers, count) {
  follow(byId("numbers"), numbers, numberCard);
  say(byId("shown"), count === 0 ? "No number has made a call" : `${numbers.length} of ${count} shown`);
}

/** Returns true for a good reply, else false, and a short text of the reply. */
function outcome({ body, fault }) {
  let good = /^\d+ bytes$/.test(body);
  let text = good ? body : body || "no body";
  try {
    const { code, msg } = JSON.parse(body);
    if (code !== undefined && msg !== undefined)
      [good, text] = [code === 0, code === 0 ? msg : `${code} · ${msg}`];
  } catch {
    // Not JSON: a faulty body, or the size of a long one.
  }
  return fault ? [false, `${fault} · ${text}`] : [good, text];
}

/** Returns a command that repeats the request. It has the mobile number; the other secrets are masked. */
function curl({ method, path, members, headers }) {
  const word = (text) => `'${text.replaceAll("'", "'\\''")}'`;
  const words = ["curl", "-X", word(method)];
  if (members) {
    const fields = ["Content-Type: application/json", "XRAPI-VERSION: 1.0", "XRAPI-DEVICE-TYPE: 1"];
    const hasClientId = Object.keys(headers).some((name) => name.toUpperCase() === "XRAPI-CLIENT-ID");
    if (hasClientId) fields.push("XRAPI-CLIENT-ID: ***");
    for (const field of fields) words.push("-H", word(field));
    const body = { ...members };
    for (const name of ["captcha", "verificationCode"]) if (name in body) body[name] = "***";
    words.push("--data-raw", word(JSON.stringify(body)));
  }
  return [...words, word(location.origin + encodeURI(path))].join(" ");
}

function requestRow(request) {
  const { time, method, path, mobile, members, text: sent, status, body } = request;
  const [good, text] = outcome(request);
  const duration = make("span", "duration");
  const summary = make("summary", "",
    make("time", "", clock.format(time)),
    make("span", "path", `${method} ${path}`.trim() || "malformed request"),
    make("span", "who", mobile),
    make("span", "status", String(status)),
    duration,
    make("span", "outcome", text));
  const rows = Object.entries(members ?? (sent ? { body: sent } : {}))
    .map(([name, value]) => make("div", "", make("dt", "", name), make("dd", "", value)));
  const details = make("details", "", summary, make("dl", "", ...rows), make("pre", "", body || "no body"),
    copyButton("plain", "Copy as curl", () => curl(request)));
  const element = make("li", "", details);
  element.dataset.good = good && status === 200;
  element.update = (entry) => say(duration, entry.duration === null ? "…" : `${entry.duration} ms`);
  return element;
}

const ask = (path, options) => fetch(path, { ...options, signal: AbortSignal.timeout(patience) });

const change = (method, path, body) => {
  const headers = { "Content-Type": "application/json" };
  return ask(path, { method, headers, body: JSON.stringify(body) }).then(look).catch(unreachable);
};

let chosen = null;
function chooseFault(fault) {
  const delay = Math.round(Math.min(Math.max(byId("delay").valueAsNumber || 0, 0), 60000));
  return change("POST", "/page/fault", { fault, delay, every: Number(byId("every").value) });
}

function makeFaults(faults) {
  const groups = new Map([["none", [{ number: null, name: "none", text: "" }]]]);
  for (const fault of faults) groups.set(fault.group, [...groups.get(fault.group) ?? [], fault]);
  for (const [group, members] of groups) {
    const buttons = members.map(({ number, name, text }) => {
      const button = make("button", "choice", name);
      button.type = "button";
      button.title = text;
      button.dataset.number = number;
      button.addEventListener("click", () => chooseFault(number));
      return button;
    });
    const row = make("div", "", ...(group === "none" ? [] : [make("span", "quiet", group)]), ...buttons);
    row.role = "group";
    row.ariaLabel = group;
    byId("faults").append(row);
  }
}

function showFaults(faults, choice) {
  if (byId("faults").childElementCount === 0) makeFaults(faults);
  chosen = choice?.fault ?? null;
  for (const button of byId("faults").querySelectorAll("button")) {
    button.ariaPressed = String(button.dataset.number === String(chosen));
  }
  // The controls show a choice that was made elsewhere, except the control that has the focus.
  for (const [id, value] of choice ? [["every", choice.every], ["delay", choice.delay]] : []) {
    const control = byId(id);
    const options = [...control.options ?? []];
    const isOffered = !control.options || options.some((option) => option.value === String(value));
    if (isOffered && document.activeElement !== control) control.value = value;
  }
  const fault = faults.find(({ number }) => number === chosen);
  const hits = { 0: "Next", 1: "Every call" }[choice?.every] ?? `One call in ${choice?.every}`;
  say(byId("fault-text"), fault ? `${hits}: ${fault.text}.` : "No fault: calls are answered normally.");
}

function showPredictions({ code, pictureText, seed }) {
  const sentences = [[code, "Every code is"], [pictureText, "Every picture says"],
    [seed, "Random choices start from seed"]];
  const known = sentences.filter(([value]) => value !== null);
  say(byId("predictions"), known.map(([value, words]) => `${words} ${value}.`).join(" "));
}

function showConnection(text, live) {
  say(byId("connection"), text);
  document.body.dataset.live = live;
}

function unreachable(error) {
  const isLate = error.name === "TimeoutError";
  showConnection(isLate ? `No answer in ${patience / 1000} s` : "Not reachable", false);
}

let run;
/** Clears what an earlier run of the service has sent, since a new run counts from 1 again. */
function startRun(newRun) {
  if (run === newRun) return;
  run = newRun;
  const lists = [byId("messages").querySelector("ol"), byId("requests"), byId("numbers")];
  for (const list of lists) list.replaceChildren();
}

async function get(path) {
  const reply = await ask(path);
  if (!reply.ok) throw new Error(reply.statusText);
  return reply;
}

/** Returns the reply with the requests that the controls choose. */
function getRequests(unmasked, format) {
  const parameters = { mobile: byId("caller").value, call: byId("call").value, unmasked, format };
  const query = Object.entries(parameters).map(([name, value]) => `${name}=${encodeURIComponent(value)}`);
  return get(`/inspect/requests?${query.join("&")}`);
}

async function saveRequests() {
  const reply = await getRequests(Number(byId("unmasked").checked), "har");
  const link = make("a");
  link.href = URL.createObjectURL(await reply.blob());
  link.download = "orvane.har";
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000); // The browser reads it after the click.
}

async function look() {
  const filter = encodeURIComponent(byId("filter").value);
  const replies = await Promise.all([get(`/page/state?filter=${filter}`), getRequests(1, "")]);
  const [state, requests] = await Promise.all(replies.map((reply) => reply.json()));
  startRun(state.run);
  showFaults(state.faults, state.chosenFault);
  showPredictions(state.predictions);
  showMessages(state.messages);
  showNumbers(state.numbers, state.numberCount);
  follow(byId("requests"), requests.reverse(), requestRow);
  showConnection("Live", true);
}

async function keepLooking() {
  if (!document.hidden) await look().catch(unreachable);
  setTimeout(keepLooking, period);
}

byId("command").textContent = `orvane-signin --connect ${location.hostname}:${location.port || 80}`;
for (const id of ["every", "delay"])
  byId(id).addEventListener("change", () => chosen !== null && chooseFault(chosen));
for (const id of ["filter", "caller", "call"])
  byId(id).addEventListener("input", () => look().catch(unreachable));
byId("save").addEventListener("click", () => saveRequests().catch(unreachable));
byId("clear").addEventListener("click", () => change("DELETE", "/inspect"));
keepLooking();
