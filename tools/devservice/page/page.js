"use strict";

// Whatever comes from a request becomes text nodes and nothing else.

const period = 500; // milliseconds between two looks at the service
const byId = (id) => document.getElementById(id);
const clock = new Intl.DateTimeFormat(undefined, { hour: "2-digit", minute: "2-digit", second: "2-digit", hourCycle: "h23" });

function make(tag, className, ...children) {
  const element = document.createElement(tag);
  if (className) element.className = className;
  element.append(...children);
  return element;
}

/** Keeps the elements of a list whose entries still exist, and makes those of new entries. */
function follow(list, entries, makeEntry, place) {
  const known = new Map([...list.children].map((element) => [element.dataset.id, element]));
  for (const entry of entries) {
    if (known.delete(String(entry.id))) continue;
    const element = makeEntry(entry);
    element.dataset.id = entry.id;
    list[place](element);
  }
  for (const element of known.values()) element.remove();
}

function messageBubble({ time, mobile, text }) {
  const [before, code, after] = text.split(/(\d{6})/);
  const bubble = make("p", "bubble", before);
  if (code) {
    const copy = make("button", "code", code);
    copy.type = "button";
    copy.title = "Copy the code";
    copy.addEventListener("click", async () => {
      await navigator.clipboard.writeText(code);
      copy.classList.add("copied");
    });
    bubble.append(copy, after);
  }
  return make("li", "", make("p", "quiet", `to ${mobile} · ${clock.format(time)}`), bubble);
}

function showMessages(messages) {
  const scroller = byId("messages");
  const list = scroller.querySelector("ol");
  const newest = list.lastChild;
  follow(list, messages, messageBubble, "append");
  for (const element of scroller.querySelectorAll(".empty")) element.hidden = messages.length > 0;
  if (list.lastChild !== newest) scroller.scrollTop = scroller.scrollHeight;
}

function stage(number) {
  if (number.code !== null) return "Code sent";
  if (number.signedIn) return "Signed in";
  return number.pictureWaits ? "Picture sent" : "Seen";
}

function numberCard(number) {
  const stageName = stage(number);
  const card = make("article", "", make("header", "", make("h3", "", number.id), make("span", "stage", stageName)));
  card.dataset.stage = stageName;
  if (number.drawing) {
    const picture = make("img");
    picture.src = `/page/picture/${encodeURIComponent(number.id)}?${number.drawing.seed}`;
    picture.alt = `The last picture: ${number.drawing.text}`;
    picture.width = 160;
    picture.height = 60;
    card.append(picture);
  }
  const { mobile, ...facts } = number.facts ?? {};
  if (number.clientId !== null) facts["XRAPI-CLIENT-ID"] = number.clientId;
  const rows = Object.entries(facts).map(([name, value]) =>
    make("div", "", make("dt", "", name), make("dd", value.trim() ? "" : "quiet", value.trim() ? value : "blank")));
  if (rows.length > 0) card.append(make("dl", "", ...rows));
  return card;
}

let shownNumbers = "";
function showNumbers(numbers) {
  if (JSON.stringify(numbers) === shownNumbers) return;
  shownNumbers = JSON.stringify(numbers);
  const none = make("p", "quiet", "None has made a call.");
  byId("numbers").replaceChildren(...(numbers.length > 0 ? numbers.map(numberCard) : [none]));
}

/** What a reply says, in short; a spoiled one as it is. */
function outcome(body) {
  try {
    const { code, msg } = JSON.parse(body);
    if (code !== undefined && msg !== undefined) return [code === 0, code === 0 ? msg : `${code} · ${msg}`];
  } catch {
    // Not JSON: a fault, or the size of a long body.
  }
  return [/^\d+ bytes$/.test(body), body || "no body"];
}

function requestRow({ time, method, path, status, body, fault }) {
  const [good, text] = outcome(body);
  const row = make("li", "",
    make("time", "", clock.format(time)),
    make("span", "path", `${method} ${path}`.trim() || "not understood"),
    make("span", "status", String(status)),
    make("span", "outcome", fault ? `${fault} · ${text}` : text));
  row.dataset.good = good && !fault && status === 200;
  return row;
}

async function chooseFault(number) {
  const body = JSON.stringify({ fault: number });
  await fetch("/page/fault", { method: "POST", headers: { "Content-Type": "application/json" }, body });
  await look();
}

function showFaults(faults, chosen) {
  const row = byId("faults");
  if (row.childElementCount === 0) {
    for (const { number, name, text } of [{ number: null, name: "none", text: "" }, ...faults]) {
      const button = make("button", "", name);
      button.type = "button";
      button.title = text;
      button.dataset.number = number;
      button.addEventListener("click", () => chooseFault(number).catch(unreachable));
      row.append(button);
    }
  }
  for (const button of row.children) button.ariaPressed = String(button.dataset.number === String(chosen));
  const fault = faults.find(({ number }) => number === chosen);
  const text = fault ? `Next: ${fault.text}.` : "The next call is answered as it should be.";
  if (byId("fault-text").textContent !== text) byId("fault-text").textContent = text;
}

function showConnection(text, live) {
  const shown = byId("connection");
  if (shown.textContent !== text) shown.textContent = text;
  shown.dataset.live = live;
}

const unreachable = () => showConnection("Not reachable", false);

async function look() {
  const reply = await fetch("/page/state");
  if (!reply.ok) throw new Error(reply.statusText);
  const state = await reply.json();
  showFaults(state.faults, state.chosenFault?.fault ?? null);
  showMessages(state.messages);
  showNumbers(state.numbers);
  follow(byId("requests"), state.requests, requestRow, "prepend");
  showConnection("Live", true);
}

async function keepLooking() {
  if (!document.hidden) await look().catch(unreachable);
  setTimeout(keepLooking, period);
}

byId("command").textContent = `orvane-signin --connect ${location.hostname}:${location.port || 80}`;
keepLooking();
