// The constant parts of the page that explains records.
#pragma once

namespace Pegasus::formats {

// Sections of events follow: the bytes, <b data-at=N>, and a table of what they became, rows with
// data-at and data-size.
inline constexpr char kExplanationBegin[] = R"(<!DOCTYPE html>
<html lang="en">
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy"
 content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
<title>Bytes of events</title>
<style>
:root { color-scheme: light dark; --mark: #f5c54299; --doubt: #e08e0b }
body { font: 14px/1.4 system-ui, sans-serif; margin: 1.5em }
h2 { font-size: 1.2em; margin: 1.5em 0 0 }
p { margin: .2em 0 .8em }
section > div { display: flex; flex-wrap: wrap; gap: 1.5em; align-items: flex-start }
pre { margin: 0; position: sticky; top: 1em }
pre i { opacity: .5; font-style: normal }
pre b { font-weight: normal; padding: 1px }
table { border-collapse: collapse; text-align: left; flex: 1; min-width: 20em }
th, td { border-bottom: 1px solid #8884; padding: .1em .5em; vertical-align: top;
  overflow-wrap: anywhere }
.unread { opacity: .5 }
em { color: var(--doubt) }
.on { background: var(--mark) }
</style>
<body>
<h1>Bytes of events</h1>
<p>Point at a byte to see what it became, or at a line to see its bytes. Offsets count from the
start of the record, whose payload begins at 152.</p>
)";

inline constexpr char kExplanationEnd[] = R"(<script>
'use strict';
for (const section of document.querySelectorAll('section')) {
  const bytes = [...section.querySelectorAll('b')];
  const rows = [...section.querySelectorAll('tr[data-at]')];
  const first = row => Number(row.dataset.at);
  const covers = (row, at) => first(row) <= at && at < first(row) + Number(row.dataset.size);
  const mark = (shownBytes, shownRows) => {
    for (const byte of bytes) byte.classList.toggle('on', shownBytes(byte));
    for (const row of rows) row.classList.toggle('on', shownRows(row));
  };
  section.addEventListener('pointerover', event => {
    const byte = event.target.closest('b');
    const row = event.target.closest('tr[data-at]');
    if (byte) {
      const at = Number(byte.dataset.at);
      mark(other => other === byte, other => covers(other, at));
    } else if (row) {
      mark(other => covers(row, Number(other.dataset.at)), other => other === row);
    }
  });
  section.addEventListener('pointerleave', () => mark(() => false, () => false));
}
</script>
</html>
)";

} // namespace Pegasus::formats
