"""Learns the background of the clip."""

import quarry
from quarry.demo.drawing import tinted
from quarry.demo.footage import Clip, Footage
from quarry.demo.page import Figure, Section, Timer
from quarry.plot import Curves


def section(footage: Footage) -> Section:
    clip = footage.clip
    page = Section("Background model", "Learns what stands still in a video and marks what differs from it.")
    page.input = f"{clip.name}, {clip.count} frames"
    page.timer = timer = Timer()
    share = Curves("Share of the frame that is foreground, over time", "foreground, % of the frame")
    instants = []
    learnt_at = None

    model = quarry.BackgroundModel()
    for index, frame in enumerate(clip.frames()):
        with timer:
            state = model.update(frame, clip.timestamp(index))
        mask, background = model.result()
        percent = float((mask > 0).mean() * 100)
        share.add(clip.seconds(index), percent)
        just_learnt = state is quarry.State.READY and learnt_at is None
        if just_learnt:
            learnt_at = index
        if just_learnt or index in shown(clip):
            instants.append((clip.seconds(index), state, percent, frame, mask, background))

    page.picture = tinted(*instants[-1][3:5])
    facts = [(timer.median, timer.in_the_long_run)]
    if learnt_at is None:
        facts.append(("–", "the clip ended before the background was learnt"))
    else:
        after = share.values()[learnt_at:]
        facts += [
            (f"{clip.seconds(learnt_at):.1f} s", "until the background was learnt"),
            (f"{sum(after) / len(after):.2f} %", "of the frame is foreground on average after that"),
        ]
    share.shade(0, clip.seconds(clip.count - 1 if learnt_at is None else learnt_at), "learning")
    page.facts(*facts)
    page.heading("How much of the frame is foreground")
    page.plot(share)
    page.text("Letters mark the instants shown below. The background takes most of a change over in 10 s, and four "
              "times faster while it is being learnt.")
    for letter, (seconds, state, percent, frame, mask, background) in zip("ABCD", instants):
        share.marks.append((seconds, letter))
        known = "learnt" if state is quarry.State.READY else "learning"
        page.heading(f"{seconds:.1f} s", f"{known} · foreground {percent:.2f} %", letter)
        page.figures("three", [Figure(frame, "frame"), Figure(mask, "foreground mask"),
                     Figure(background, "background")])
    return page


def shown(clip: Clip) -> set[int]:
    """A frame while the background is being learnt, one in the middle and the last."""
    return {min(int(clip.rate), clip.count - 1), clip.count * 3 // 5, clip.count - 1}
