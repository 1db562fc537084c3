#include "Demo/Page.h"

#include <Quarry/Version.h>

#include "Demo/Html.h"

namespace quarry::command {
namespace {

using html::Escape;
using html::Number;

constexpr const char* kStyle = R"css(
:root {
  color-scheme: light dark;
  --page: #f6f5f2; --card: #ffffff; --ink: #1d1f23; --quiet: #676b73; --line: #e4e2dc;
  --accent: #c2560c; --accent-soft: #c2560c22; --second: #2f6f8f; --second-soft: #2f6f8f1c;
  --shade: #0003;
}
@media (prefers-color-scheme: dark) {
  :root {
    --page: #131417; --card: #1c1e22; --ink: #eceae6; --quiet: #9a9ea7; --line: #2f3238;
    --accent: #f08a3c; --accent-soft: #f08a3c26; --second: #79b8d6; --second-soft: #79b8d622;
    --shade: #000a;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; background: var(--page); color: var(--ink);
  font: 16px/1.55 system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", "Noto Sans", sans-serif;
  -webkit-font-smoothing: antialiased;
}
main, header, footer { max-width: 1160px; margin: 0 auto; padding: 0 28px; }
header { padding-top: 56px; padding-bottom: 28px; }
.brand { display: flex; align-items: center; gap: 18px; }
.brand svg { width: 54px; height: 54px; flex: none; }
h1 { font-size: 44px; line-height: 1.1; letter-spacing: -0.025em; margin: 0; font-weight: 700; }
.lead { font-size: 19px; color: var(--quiet); margin: 14px 0 20px; max-width: 46em; }
.chips { display: flex; flex-wrap: wrap; gap: 8px; margin: 0; padding: 0; list-style: none; }
.chips li { border: 1px solid var(--line); background: var(--card); border-radius: 99px; padding: 3px 13px;
  font-size: 14px; color: var(--quiet); }
.chips b { color: var(--ink); font-weight: 600; }
.notice { border-left: 4px solid var(--accent); background: var(--accent-soft); border-radius: 0 10px 10px 0;
  padding: 12px 18px; margin: 22px 0 0; }
section { background: var(--card); border: 1px solid var(--line); border-radius: 16px; padding: 32px 34px 34px;
  margin: 0 0 26px; }
h2 { font-size: 27px; letter-spacing: -0.015em; margin: 0 0 4px; line-height: 1.2; }
h2 + p { margin: 0; color: var(--quiet); font-size: 17px; }
h2 + p + p.quiet { margin-top: 14px; }
h3 { font-size: 17px; margin: 34px 0 10px; font-weight: 650; }
h3 .quiet { font-weight: 400; margin-left: 5px; }
.quiet { color: var(--quiet); }
p.quiet { font-size: 15px; margin: 6px 0 14px; max-width: 52em; }
a { color: var(--accent); text-decoration: none; }
a:hover { text-decoration: underline; }
section > p:last-child { margin-bottom: 0; }
/* Shadows where there is more to scroll to: the first two layers move with the content and cover the others. */
.scroll, .plot { overflow-x: auto;
  background: linear-gradient(90deg, var(--card) 50%, transparent) 0 / 32px 100% no-repeat local,
    linear-gradient(270deg, var(--card) 50%, transparent) 100% / 32px 100% no-repeat local,
    linear-gradient(90deg, var(--shade), transparent) 0 / 12px 100% no-repeat,
    linear-gradient(270deg, var(--shade), transparent) 100% / 12px 100% no-repeat; }
table { border-collapse: collapse; width: 100%; min-width: 760px; margin-top: 14px; }
th { text-align: left; font-size: 13px; font-weight: 600; color: var(--quiet); padding: 0 18px 8px 0; }
td { border-top: 1px solid var(--line); padding: 16px 18px 16px 0; vertical-align: middle; }
td:last-child .quiet { margin-left: auto; }
td:last-child, th:last-child { text-align: right; padding-right: 0; white-space: nowrap; }
.overview td:first-child { width: 32%; }
td a { font-weight: 650; font-size: 17px; }
td .quiet { display: block; font-size: 14px; max-width: 22em; }
td img, td svg { display: block; width: 190px; height: auto; border-radius: 8px; }
td img { max-height: 142px; object-fit: cover; }
.time { font-size: 22px; font-weight: 650; font-variant-numeric: tabular-nums; letter-spacing: -0.01em; }
.facts { display: grid; grid-template-columns: repeat(auto-fit, minmax(210px, 1fr)); gap: 14px; margin: 24px 0 0; }
.fact { background: var(--page); border-radius: 12px; padding: 14px 18px 15px; }
.fact b { display: block; font-size: 27px; line-height: 1.25; letter-spacing: -0.02em; font-weight: 650;
  font-variant-numeric: tabular-nums; }
.fact span { display: block; color: var(--quiet); font-size: 14px; line-height: 1.4; }
.swatch { display: inline-block; width: 0.9em; height: 0.9em; border: 1px solid var(--line); border-radius: 6px;
  margin-right: 10px; vertical-align: -0.08em; }
.three, .four { display: grid; gap: 16px; grid-template-columns: repeat(3, 1fr); }
.four { grid-template-columns: repeat(4, 1fr); }
figure { margin: 0; min-width: 0; }
figure img { display: block; width: 100%; height: auto; border-radius: 10px; border: 1px solid var(--line); }
.four img, .three.cuts img { aspect-ratio: 4 / 3; object-fit: cover; }
.three + p.quiet, .four + p.quiet { margin-top: 16px; }
figcaption { font-size: 14px; color: var(--quiet); margin-top: 7px; }
.pair { display: flex; justify-content: space-between; gap: 10px; }
.pair span { overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.pair b { color: var(--ink); font-variant-numeric: tabular-nums; }
.two { display: grid; gap: 16px; grid-template-columns: repeat(2, 1fr); }
.stack { display: grid; gap: 14px; }
.legend { display: flex; gap: 24px; align-items: center; margin-top: 22px; }
.legend .wheel { flex: none; }
.inset { margin-top: 24px; display: grid; gap: 22px; grid-template-columns: 2fr 1fr; align-items: start; }
.wheel img { display: block; width: 120px; height: 120px; }
.matrix { min-width: 0; width: auto; margin: 10px 0 0; border-collapse: separate; border-spacing: 3px; }
.matrix th { padding: 2px 6px; text-align: center; vertical-align: bottom; font-weight: 400; }
.matrix th[scope="row"] { text-align: right; white-space: nowrap; vertical-align: middle; }
.matrix th img { display: block; width: 72px; height: 54px; object-fit: cover; border-radius: 6px; margin: 0 auto; }
.matrix td, .matrix td:last-child { border: 0; border-radius: 6px; padding: 15px 4px; width: 84px; text-align: center;
  font-variant-numeric: tabular-nums; background: rgb(214 98 20 / calc(var(--share) * 0.8)); }
.bar { display: block; height: 5px; border-radius: 3px; background: var(--line); margin-top: 6px; overflow: hidden; }
.bar i { display: block; height: 100%; border-radius: 3px; background: var(--accent); }
.badge { background: var(--second); color: var(--card); border-radius: 99px; width: 26px; height: 26px; font-size: 13px;
  display: inline-flex; align-items: center; justify-content: center; margin-right: 10px; }
.instant + .instant h3 { margin-top: 26px; }
.plot svg { display: block; width: 100%; min-width: 640px; height: auto; }
svg text { font-size: 13px; fill: var(--quiet); font-variant-numeric: tabular-nums; }
svg .middle { text-anchor: middle; }
svg .end { text-anchor: end; }
svg .name { fill: var(--ink); }
svg .grid { stroke: var(--line); }
svg .axis { stroke: var(--quiet); opacity: 0.7; }
svg .curve { fill: none; stroke: var(--accent); stroke-width: 2; stroke-linejoin: round; }
svg .curve.second { stroke: var(--second); }
svg .curvename { fill: var(--accent); font-weight: 600; }
svg .curvename.second { fill: var(--second); }
svg .strip { image-rendering: pixelated; }
svg .under { fill: var(--accent-soft); }
svg .band { fill: var(--second-soft); }
svg .bandname { fill: var(--second); font-weight: 600; }
svg .curvename, svg .bandname { paint-order: stroke; stroke: var(--card); stroke-width: 4px; stroke-linejoin: round; }
svg line.mark { stroke: var(--second); stroke-dasharray: 3 4; }
svg circle.mark { fill: var(--second); }
svg .markname { fill: var(--card); font-weight: 650; font-size: 12px; }
footer { color: var(--quiet); font-size: 14px; padding-top: 4px; padding-bottom: 48px; }
@media (max-width: 760px) {
  section { padding: 24px 20px; border-radius: 12px; }
  main, header, footer { padding-left: 16px; padding-right: 16px; }
  .four { grid-template-columns: repeat(2, 1fr); }
  .two, .three, .inset { grid-template-columns: 1fr; }
  .three.cuts { grid-template-columns: repeat(2, 1fr); }
  .legend { flex-direction: column; align-items: flex-start; }
  h1 { font-size: 36px; }
  .overview { min-width: 0; }
  .overview, .overview thead, .overview tbody { display: block; }
  .overview tr { display: grid; grid-template-columns: 1fr 130px; gap: 12px 18px; }
  .overview th:nth-child(2), .overview th:nth-child(3) { display: none; }
  .overview tbody tr { border-top: 1px solid var(--line); padding: 18px 0; }
  .overview td, .overview td:first-child { border: 0; padding: 0; width: auto; }
  .overview td:last-child { grid-area: 1 / 2; }
  .overview td:last-child, .overview th:last-child { white-space: normal; text-wrap: balance; }
  .overview td img, .overview td svg { width: 100%; }
}
@media print { section { break-inside: auto; } figure, .instant { break-inside: avoid; } }
)css";

/// Stacked blocks of stone.
constexpr const char* kMark = R"svg(<svg viewBox="0 0 54 54" aria-hidden="true">
<rect x="3" y="35" width="22" height="16" rx="3.5" style="fill:var(--ink)"/>
<rect x="29" y="35" width="22" height="16" rx="3.5" style="fill:var(--quiet)"/>
<rect x="3" y="15" width="34" height="16" rx="3.5" style="fill:var(--accent)"/>
<rect x="41" y="15" width="10" height="16" rx="3.5" style="fill:var(--ink)"/>
<rect x="16" y="2" width="18" height="9" rx="3" style="fill:var(--second)"/>
</svg>)svg";

std::string Chip(const std::string& name, const std::string& value) {
    return "<li>" + name + " <b>" + value + "</b></li>\n";
}

std::string PlayedFrames(const Clip& clip) {
    const std::string played = std::to_string(clip.frames);
    return clip.frames < clip.framesInAll ? "first " + played + " of " + std::to_string(clip.framesInAll) : played;
}

std::string Notice(const Footage& footage) {
    if (!footage.clip.drawn && !footage.picturesDrawn) return "";
    const char* const what = !footage.picturesDrawn ? "The clip is a scene"
                             : footage.clip.drawn   ? "The clip and the pictures are scenes"
                                                    : "The pictures are scenes";
    return std::string(R"(<p class="notice"><b>No real footage.</b> )") + what +
           " that this demo drew itself, because the media folder held none that could be read.</p>\n";
}

std::string Header(const Footage& footage) {
    const Clip& clip = footage.clip;
    return std::string("<header>\n<div class=\"brand\">") + kMark +
           "<h1>Quarry</h1></div>\n<p class=\"lead\">Computer-vision building blocks for video analysis. Each "
           "operation "
           "below ran when this page was made, through the library&rsquo;s public interface.</p>\n<ul "
           "class=\"chips\">\n" +
           Chip("version", QUARRY_VERSION) + Chip("OpenCV", CV_VERSION) + Chip("clip", Escape(clip.name)) +
           Chip("size", std::to_string(clip.size.width) + " &times; " + std::to_string(clip.size.height)) +
           Chip("rate", Number(clip.framesPerSecond, clip.framesPerSecond < 1 ? 2 : 0) + " frames/s") +
           Chip("frames", PlayedFrames(clip)) + "</ul>\n" + Notice(footage) + "</header>\n";
}

std::string Row(const Section& section) {
    const std::string counted = section.counted.empty() ? "" : R"(<span class="quiet">)" + section.counted + "</span>";
    const std::string time = section.milliseconds > 0 ? html::Time(section.milliseconds) : "&ndash;";
    return "<tr><td><a" + html::Attribute("href", "#" + section.id) + ">" + section.title +
           R"(</a><span class="quiet">)" + section.summary + "</span></td><td>" + section.input + "</td><td>" +
           section.result + R"(</td><td><span class="time">)" + time + "</span>" + counted + "</td></tr>\n";
}

std::string Overview(const std::vector<Section>& sections) {
    std::string rows;
    for (const Section& section : sections) rows += Row(section);
    return "<section id=\"operations\">\n<h2>Operations</h2>\n<div "
           "class=\"scroll\"><table class=\"overview\">\n<thead><tr><th>Operation</th>"
           "<th>Input</th><th>Result</th><th>Time per frame, median</th></tr></thead>\n<tbody>\n" +
           rows + "</tbody></table></div>\n</section>\n";
}

std::string Details(const Section& section) {
    return "<section id=\"" + section.id + "\">\n<h2>" + section.title + "</h2>\n<p>" + section.summary + "</p>\n" +
           section.body + "</section>\n";
}

}  // namespace

std::string PageHtml(const Footage& footage, const std::vector<Section>& sections) {
    std::string page =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>Quarry "
        "demo</title>\n<style>" +
        std::string(kStyle) + "</style>\n</head>\n<body>\n" + Header(footage) + "<main>\n" + Overview(sections);
    for (const Section& section : sections) page += Details(section);
    return page +
           "</main>\n<footer>Times are wall time per frame on the machine that made this page, decoding not "
           "included.</footer>\n</body>\n</html>\n";
}

}  // namespace quarry::command
