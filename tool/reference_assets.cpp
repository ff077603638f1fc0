// SPDX-License-Identifier: Apache-2.0
// Style sheet and script of the node reference.
#include "tool/reference_assets.h"

namespace tidemark::tool {

const char* const referenceStyle = R"css(:root {
  --paper: #ffffff; --ink: #1d2530; --soft: #5b6775; --line: #dde3ea; --wash: #f5f8fb;
  --link: #0b62b8; --mark: #e3f0fc;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #14181d; --ink: #e4e9ef; --soft: #9aa6b3; --line: #2c343d; --wash: #1b2128;
    --link: #7ab8f5; --mark: #1f3246;
  }
}
* { box-sizing: border-box; }
body { margin: 0; background: var(--paper); color: var(--ink);
  font: 16px/1.55 system-ui, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif; }
a { color: var(--link); text-decoration: none; }
a:hover, a:focus-visible { text-decoration: underline; }
header { background: var(--wash); border-bottom: 1px solid var(--line); padding: .8rem 1.5rem; }
header .home { color: var(--ink); font-weight: 650; }
header .home span { color: var(--soft); font-weight: 400; }
main { max-width: 62rem; margin: 0 auto; padding: 1.5rem 1.5rem 4rem; }
h1 { font-size: 1.9rem; line-height: 1.2; margin: .6rem 0 .8rem; }
h2 { font-size: 1.15rem; margin: 2rem 0 .6rem; }
h2 small { color: var(--soft); font-weight: 400; }
p { max-width: 48rem; }
#search { width: 100%; padding: .7rem .9rem; font: inherit; color: inherit;
  background: var(--wash); border: 1px solid var(--line); border-radius: .5rem; }
#search:focus { outline: 2px solid var(--link); outline-offset: 1px; }
#found { color: var(--soft); min-height: 1.5em; margin: .6rem 0; }
ul.types, ol.types { list-style: none; margin: 0; padding: 0; }
.types li { padding: .3rem .5rem; border-radius: .35rem; display: flex; gap: .9rem; }
.types li:hover, .types li.current { background: var(--mark); }
.types a { flex: 0 0 15rem; font-weight: 550; overflow-wrap: anywhere; }
.types span { color: var(--soft); overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.category { display: inline-block; padding: .1rem .6rem; border: 1px solid var(--line);
  border-radius: 1rem; font-size: .85rem; }
.note { background: var(--wash); border-left: 3px solid var(--link); padding: .5rem .9rem; }
.wide { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; min-width: 38rem; table-layout: fixed;
  font-size: .95rem; }
thead th:first-child { width: 18%; }
thead th:nth-child(2) { width: 30%; }
.inputs thead th:nth-child(3) { width: 13%; }
th, td { text-align: left; vertical-align: top; padding: .55rem .7rem;
  border-bottom: 1px solid var(--line); }
thead th { color: var(--soft); font-weight: 550; font-size: .85rem; }
tbody th { font-weight: 600; overflow-wrap: anywhere; }
td { overflow-wrap: anywhere; }
tr:target { background: var(--mark); }
code { font: .88em/1.4 ui-monospace, "SF Mono", Menlo, Consolas, monospace; }
summary { cursor: pointer; color: var(--link); }
@media (max-width: 40rem) { .types li { flex-direction: column; gap: 0; } }
)css";

const char* const referenceScript = R"js("use strict";
// Finds types by all words of the search: in names first, then anywhere.
const box = document.getElementById("search");
const found = document.getElementById("found");
const results = document.getElementById("results");
const all = document.getElementById("all");
const items = [];
const seen = new Set();
for (const item of all.querySelectorAll("li")) {
  const link = item.querySelector("a");
  if (seen.has(link.href)) continue;
  seen.add(link.href);
  items.push({ item, name: link.textContent.toLowerCase(), words: item.dataset.words });
}

function rank(entry, words) {
  if (!words.every((word) => entry.words.includes(word))) return -1;
  if (entry.name === words.join("")) return 0;
  if (words.every((word) => entry.name.includes(word))) return entry.name.startsWith(words[0]) ? 1 : 2;
  return 3;
}

function search() {
  const words = box.value.toLowerCase().split(/\s+/).filter(Boolean);
  results.replaceChildren();
  const isSearch = words.length > 0;
  results.hidden = !isSearch;
  all.hidden = isSearch;
  found.textContent = "";
  if (!isSearch) return;
  const hits = [];
  for (const entry of items) {
    const order = rank(entry, words);
    if (order >= 0) hits.push({ order, entry });
  }
  hits.sort((a, b) => a.order - b.order || (a.entry.name < b.entry.name ? -1 : 1));
  for (const hit of hits) results.append(hit.entry.item.cloneNode(true));
  found.textContent = hits.length === 0 ? "Nothing found." : hits.length + " found";
  if (results.firstElementChild) results.firstElementChild.classList.add("current");
}

function move(step) {
  const list = [...results.children];
  const at = list.findIndex((item) => item.classList.contains("current"));
  const next = list[Math.min(Math.max(at + step, 0), list.length - 1)];
  if (!next) return;
  if (at >= 0) list[at].classList.remove("current");
  next.classList.add("current");
  next.scrollIntoView({ block: "nearest" });
}

box.addEventListener("input", search);
box.addEventListener("keydown", (event) => {
  if (event.key === "ArrowDown") { move(1); event.preventDefault(); }
  if (event.key === "ArrowUp") { move(-1); event.preventDefault(); }
  if (event.key === "Escape") { box.value = ""; search(); }
  const current = results.querySelector(".current a");
  if (event.key === "Enter" && current) location.href = current.href;
});
document.addEventListener("keydown", (event) => {
  if (event.key === "/" && document.activeElement !== box) { box.focus(); event.preventDefault(); }
});
box.value = new URLSearchParams(location.search).get("q") || "";
search();
)js";

} // namespace tidemark::tool
