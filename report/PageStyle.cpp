#include "report/PageStyle.h"

#include "report/DrawingStyle.h"

namespace report {

namespace {

/// Texts keep a contrast of 4.5 to 1 or more on both papers.
constexpr const char* g_szColours = R"(:root {
  color-scheme: light dark;
  --page-paper: var(--drawing-paper, #ffffff);
  --page-ink: #1c2126;
  --page-quiet: #59626b;
  --page-line: #d5dade;
  --page-shade: #f4f6f7;
  --page-link: #0b57a4;
  --page-good: #1a6b35;
  --page-doubtful: #8a5200;
  --page-refused: #a81e24;
}
@media screen and (prefers-color-scheme: dark) {
  :root {
    --page-paper: var(--drawing-paper, #16191c);
    --page-ink: #e3e6e8;
    --page-quiet: #a3acb4;
    --page-line: #3a4147;
    --page-shade: #1f2428;
    --page-link: #7db8f2;
    --page-good: #6fce8c;
    --page-doubtful: #f0b458;
    --page-refused: #ff8f8b;
  }
}
)";

constexpr const char* g_szText = R"(* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; text-size-adjust: 100%; }
body {
  margin: 0; background: var(--page-paper); color: var(--page-ink);
  font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Liberation Sans", sans-serif;
  overflow-wrap: break-word;
}
main, footer { max-width: 68rem; margin: 0 auto; padding: 0 1.25rem; }
main { padding-top: 1.75rem; }
footer { padding-bottom: 2rem; color: var(--page-quiet); font-size: .875rem; }
h1 { font-size: 1.625rem; line-height: 1.25; margin: 0 0 .25rem; font-weight: 650; }
h2 {
  font-size: 1.25rem; line-height: 1.3; margin: 2.5rem 0 .75rem; padding-top: .75rem;
  border-top: 1px solid var(--page-line); font-weight: 650;
}
h3 { font-size: 1.0625rem; margin: 1.75rem 0 .5rem; font-weight: 650; }
p { margin: 0 0 .75rem; max-width: 44rem; }
a { color: var(--page-link); }
.quiet { color: var(--page-quiet); }
)";

constexpr const char* g_szVerdict = R"(.verdict {
  margin: 1rem 0; padding: .875rem 1.125rem; border-left: .375rem solid var(--page-verdict);
  background: var(--page-shade);
}
.verdict p { max-width: none; margin: 0; }
.verdict p + p, .verdict ul + p { margin-top: .5rem; }
.verdict ul { margin: .5rem 0 0; padding-left: 1.25rem; }
.verdict .word { font-size: 1.25rem; font-weight: 650; color: var(--page-verdict); }
.good { --page-verdict: var(--page-good); }
.doubtful { --page-verdict: var(--page-doubtful); }
.refused, .failed { --page-verdict: var(--page-refused); }
dl { display: grid; grid-template-columns: max-content minmax(0, 1fr); gap: .125rem 1rem; margin: 1rem 0; }
dt { color: var(--page-quiet); }
dd { margin: 0; }
nav ul { list-style: none; display: flex; flex-wrap: wrap; gap: .25rem 1.125rem; margin: 0; padding: 0; }
)";

constexpr const char* g_szTables =
    R"(table { border-collapse: collapse; width: 100%; margin: 0 0 1.5rem; font-size: .9375rem; }
caption { text-align: left; font-weight: 650; padding: 0 0 .375rem; }
th, td { text-align: left; vertical-align: top; padding: .375rem 1rem .375rem 0; border-bottom: 1px solid var(--page-line); }
th:last-child, td:last-child { padding-right: 0; }
thead th { color: var(--page-quiet); font-weight: 400; border-bottom-color: var(--page-quiet); }
tbody th { font-weight: 400; }
.number { font-variant-numeric: tabular-nums; }
td.number { white-space: nowrap; }
td[data-column="Value"] { font-weight: 650; }
.not, .none, .empty { color: var(--page-quiet); font-weight: 400; }
.beyond { display: block; color: var(--page-doubtful); font-size: .8125rem; }
.many { font-size: .875rem; }
.many td, .many th { padding-top: .1875rem; padding-bottom: .1875rem; }
.figures, .limited { table-layout: fixed; }
.figures th:nth-child(1), .limited th:nth-child(1) { width: 11rem; }
.figures th:nth-child(2), .limited th:nth-child(2) { width: 8rem; }
.limited th:nth-child(3) { width: 9.5rem; }
.index { font-size: .875rem; }
.index th, .index td { padding-right: .75rem; }
.index thead th { vertical-align: bottom; }
.index .beyond, .index .why { font-size: inherit; }
.index .why { display: block; font-size: .75rem; font-weight: 400; }
.state { color: var(--page-verdict); font-weight: 650; white-space: nowrap; }
details { margin: 0 0 1.25rem; }
summary { cursor: pointer; color: var(--page-link); padding: .25rem 0; }
details[open] summary { margin-bottom: .5rem; }
)";

constexpr const char* g_szFigures = R"(figure { margin: 0 0 1.5rem; min-width: 0; }
figcaption { margin-top: .5rem; font-size: .875rem; color: var(--page-quiet); max-width: 44rem; }
figure svg, figure img { display: block; width: 100%; height: auto; }
figure.plot svg { max-width: 32rem; }
figure.picture img { max-width: 21rem; background: #fff; border: 1px solid var(--page-line); }
.gallery { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(100%, 24rem), 1fr)); gap: .5rem 2rem; align-items: start; }
.beside { display: grid; grid-template-columns: minmax(0, 1fr); gap: .5rem 2rem; align-items: start; }
@media screen and (min-width: 60rem) { .beside { grid-template-columns: 16rem minmax(0, 1fr); } }
.triple, .trends { display: grid; gap: .5rem 1.5rem; align-items: start; }
.triple { grid-template-columns: repeat(auto-fit, minmax(min(100%, 15rem), 1fr)); }
.trends { grid-template-columns: repeat(auto-fit, minmax(min(100%, 20rem), 1fr)); }
)";

constexpr const char* g_szNarrow = R"(@media screen and (max-width: 60rem) {
  .index { font-size: .75rem; }
  .index th, .index td { padding-right: .375rem; }
}
@media screen and (max-width: 44rem) {
  .index { font-size: .875rem; }
  main, footer { padding-left: 1rem; padding-right: 1rem; }
  table, tbody, tr, caption, tbody th, td { display: block; width: 100%; }
  thead { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); white-space: nowrap; }
  tr { padding: .625rem 0; border-bottom: 1px solid var(--page-line); }
  th, td { padding: .0625rem 0; border-bottom: 0; }
  tbody th { font-weight: 650; }
  .figures tr > *, .limited tr > * { width: 100%; }
  td.number { white-space: normal; }
  .index .why { display: inline; }
  .index .empty { display: none; }
  .index thead { position: static; width: auto; height: auto; clip-path: none; white-space: normal; }
  .index thead tr { display: flex; flex-wrap: wrap; gap: .125rem 1rem; }
  .index thead th { width: auto; border: 0; }
  td.number::before { content: attr(data-column) ": "; color: var(--page-quiet); font-weight: 400; }
  .beyond { display: inline; }
}
)";

constexpr const char* g_szPaper = R"(@page { size: A4; margin: 16mm 15mm; }
@media print {
  html { font-size: 9pt; }
  body { line-height: 1.4; }
  main, footer { max-width: none; padding: 0; }
  h2 { margin-top: 1.5rem; }
  h2, h3, h2 + p, caption, thead, summary { break-after: avoid; }
  tbody tr:first-child { break-before: avoid; }
  figure, tr, .verdict, dl { break-inside: avoid; }
  thead { display: table-header-group; }
  p { orphans: 3; widows: 3; }
  nav { display: none; }
  details::details-content { content-visibility: visible; }
  summary { color: inherit; list-style: none; }
  a { color: inherit; text-decoration: none; }
  figure.plot svg { max-width: 82mm; }
  figure.picture img { max-width: 42mm; }
  .gallery { grid-template-columns: repeat(2, minmax(0, 1fr)); }
  .beside { grid-template-columns: 42mm minmax(0, 1fr); }
  .triple { grid-template-columns: repeat(3, 1fr); }
  .trends { grid-template-columns: repeat(2, 1fr); }
  .index { font-size: .8125rem; }
  .index th, .index td { padding-right: 1.5mm; }
  .verdict { background: none; border: 1px solid var(--page-verdict); border-left-width: .375rem; }
}
)";

} // namespace

std::string PageStyle() {
    return DrawingStyle() + g_szColours + g_szText + g_szVerdict + g_szTables + g_szFigures +
           g_szNarrow + g_szPaper;
}

} // namespace report
