// The constant parts of the report.
#pragma once

namespace Pegasus::formats {

// Events follow.
inline constexpr char kPageBegin[] = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy"
 content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<title>Event report</title>
<style>
:root { color-scheme: light dark; --line: #8886; --s0: #8e44ad; --s1: #3b7dd8; --s2: #e08e0b;
  --s3: #d03b2f }
body { display: flex; flex-direction: column; font: 14px/1.4 system-ui, sans-serif; margin: 1.5em;
  gap: 1em }
#overview { order: -1 }
h1 { font-size: 1.5em; margin: 0 }
svg { width: 100%; max-height: 15em; font-size: 11px; fill: currentColor }
svg line { stroke: currentColor }
table { border-collapse: collapse; text-align: left }
#sources { columns: 15em }
#events { width: 100%; table-layout: fixed; overflow-wrap: anywhere }
#events th:nth-child(-n+4) { width: 9em }
th, td { border-bottom: 1px solid var(--line); padding: .25em .5em; vertical-align: top }
.s0 { --s: var(--s0) } .s1 { --s: var(--s1) } .s2 { --s: var(--s2) } .s3 { --s: var(--s3) }
tr[class] { box-shadow: inset 4px 0 var(--s) }
rect { fill: var(--s) }
.legend span { border-left: 1em solid var(--s); padding: 0 1em 0 .4em }
summary { cursor: pointer }
pre { margin: .5em 0; white-space: pre-wrap }
#filters { display: flex; flex-wrap: wrap; gap: .5em 1em; margin-top: 1em; align-items: baseline }
#filters[hidden] { display: none }
#text { flex: 1; min-width: 12em }
@media print { #filters { display: none } }
</style>
<body>
<table id="events"><thead><tr><th>Sequence<th>Time<th>Severity<th>Source<th>Event</thead><tbody>
)";

// The overview follows: facts, chart, table of sources.
inline constexpr char kPageMiddle[] = R"(</tbody></table>
<section id="overview">
<h1>Event report</h1>
)";

// The names of the sources follow.
inline constexpr char kFiltersBegin[] = R"(</table></div>
<form id="filters" hidden>
<input id="text" type="search" placeholder="Search" aria-label="Search">
<label>Severity <select id="severity"><option value="0">all
<option value="1">informational or worse<option value="2">warning or worse<option value="3">error
</select></label>
<label>Source <select id="source"><option value="">all)";

inline constexpr char kFiltersEnd[] = R"(
</select></label>
<label>Known <select id="signs"><option value="">all<option value="-~">without ~ layout assumed
<option value="~">~ layout assumed<option value="!">! bytes short<option value="+">+ bytes unread
</select></label>
<output id="shown"></output>
</form>
)";

inline constexpr char kPageEnd[] = R"(</section>
<script>
'use strict';
const get = id => document.getElementById(id);
const rows = Array.from(get('events').tBodies[0].rows, row => ({
  row, severity: Number(row.className.slice(1)), source: row.cells[3].textContent,
  signs: row.dataset.signs, text: null }));
let timer;
function filter() {
  const text = get('text').value.toLowerCase();
  const severity = Number(get('severity').value);
  const all = get('source').selectedIndex === 0;
  const source = get('source').value;
  const sign = get('signs').value;
  const knows = signs => sign === '-~' ? !signs.includes('~') : signs.includes(sign);
  let shown = 0;
  for (const item of rows) {
    let wanted = item.severity >= severity && (all || item.source === source) &&
      knows(item.signs);
    if (wanted && text)
      wanted = (item.text ??= item.row.textContent.toLowerCase()).includes(text);
    item.row.hidden = !wanted;
    shown += wanted;
  }
  get('shown').value = `${shown} of ${rows.length} events`;
}
get('filters').hidden = false;
get('filters').addEventListener('submit', event => event.preventDefault());
get('filters').addEventListener('input', () => {
  clearTimeout(timer);
  timer = setTimeout(filter, 150);
});
filter();
</script>
</html>
)";

} // namespace Pegasus::formats
