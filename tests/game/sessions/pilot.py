#!/usr/bin/env python3
"""Plays Drelk Storm in a real window under Xvfb, by sight.

The X server is started with -fbdir, so its screen is a file in XWD format
that the server keeps up to date; the pilot maps it and reads the game
window's pixels straight from it, many times a second, without taking
screenshots. What it sees (the title art, the ship, the enemy shots, the
boss, the closing art) drives xdotool, the only way input reaches the game.

In a fight the pilot plays in step with the game: it stops the game's
process (SIGSTOP; the game was started by the calling script) at the end
of each step, looks, follows every enemy shot as a straight line, plans a
course a couple of seconds ahead, sends the keys and lets the game run its
next step (SIGCONT). The game's logic counts steps, not seconds, so this
changes nothing in what is played or recorded; it only gives the pilot
time to think on a busy machine.

    pilot.py FRAMEBUFFER WINDOW_ID WINDOW_X WINDOW_Y GAME_PID SCENARIO

SCENARIO is one of:
  defeat   skip the splash, start, move, fire until drelks fall, wipe,
           pause and resume, fly up into the drelks, wait for the title, Q
  victory  skip the splash, start, fight until the boss falls (dodging the
           shots it sees, wiping when cornered), wait for the title, Q
  splash   let the splash run out, wait for the title, Q

Exit status: 0 when the scenario played out and Q was sent on the title
screen, 2 when the game was lost where a victory was wanted (Q was still
sent, so the game ends normally), 1 on any failure (a message says why).
"""

import math
import mmap
import os
import re
import signal
import struct
import subprocess
import sys
import time

# The game's grid and window, as the configuration sets them.
COLUMNS, ROWS = 80, 24
WINDOW_W, WINDOW_H = 1024, 768
CELL_W, CELL_H = WINDOW_W / COLUMNS, WINDOW_H / ROWS

# Colour codes of a pixel: one bit for each bright channel.
RED, GREEN, YELLOW, BLUE, MAGENTA, CYAN, WHITE = 1, 2, 3, 4, 5, 6, 7

# Where a glyph's ink sits in its cell, in pixels from the cell's top-left
# corner, measured on the enemy shot's glyphs; used to turn the centre of a
# blob of pixels back into the world position the glyph was drawn for.
GLYPH_CENTRE_X, GLYPH_CENTRE_Y = 6.4, 19.0


# The ship's art is looked for from this pixel row down: the ship flies no
# higher in a fight (its top row is 13 at the highest), and cyan above it
# is the title's.
SHIP_TOP_PIXEL = 13 * 32


# PILOT_DEBUG=file: every look of a fight, what was seen and chosen.
DEBUG = open(os.environ["PILOT_DEBUG"], "w") if os.environ.get("PILOT_DEBUG") else None


class Failure(Exception):
    pass


def log(message):
    print(f"pilot: {message}", flush=True)


# --------------------------------------------------------------------------
# Seeing


class Screen:
    """The X server's framebuffer file, read in place."""

    def __init__(self, path, win_x, win_y):
        self.file = open(path, "rb")
        self.map = mmap.mmap(self.file.fileno(), 0, access=mmap.ACCESS_READ)
        header = struct.unpack(">25I", self.map[:100])
        header_size, width, height = header[0], header[4], header[5]
        byte_order, bits_per_pixel, bytes_per_line, colours = header[7], header[11], header[12], header[19]
        if bits_per_pixel != 32 or byte_order != 0:
            raise Failure(f"framebuffer is {bits_per_pixel} bits a pixel, byte order {byte_order}; "
                          "the pilot reads 32-bit little-endian pixels")
        if win_x + WINDOW_W > width or win_y + WINDOW_H > height:
            raise Failure(f"the game window at {win_x},{win_y} does not fit a {width}x{height} screen")
        self.pixels = header_size + colours * 12
        self.stride = bytes_per_line
        self.win_x, self.win_y = win_x, win_y
        # Each channel byte becomes its bit of the colour code when bright.
        self.tables = [bytes((bit if v > 127 else 0) for v in range(256)) for bit in (4, 2, 1)]
        self.column_of = [int(x / CELL_W) for x in range(WINDOW_W)]

    def row_codes(self, y):
        """The colour codes of one pixel row of the window, one byte a pixel."""
        start = self.pixels + (self.win_y + y) * self.stride + self.win_x * 4
        row = self.map[start:start + WINDOW_W * 4]
        code = 0
        for channel, table in enumerate(self.tables):
            code |= int.from_bytes(row[channel::4].translate(table), "big")
        return code.to_bytes(WINDOW_W, "big")

    def look(self, row_step=3):
        """One look at the window: pixel counts by colour and cell, and the
        red blobs (enemy shots, or the closing screen's art)."""
        view = View(time.monotonic())
        counts = view.counts
        column_of = self.column_of
        red_runs = []
        ship = [0, 0.0, 0]
        # Every pixel row where the ship flies, for the shots' heights there.
        fine_from = int(FINE_FROM_ROW * CELL_H)
        for y in [*range(1, fine_from, row_step), *range(fine_from, WINDOW_H)]:
            codes = self.row_codes(y)
            base = int(y / CELL_H) * COLUMNS
            for match in INK.finditer(codes):
                start, end = match.span()
                colour = codes[start]
                if colour == RED:
                    red_runs.append((y, start, end))
                elif colour == CYAN and y >= SHIP_TOP_PIXEL:
                    ship[0] += end - start
                    ship[1] += (start + end) / 2 * (end - start)
                    ship[2] = max(ship[2], y)
                if y < fine_from or y % row_step == 1:
                    for x in range(start, end, 2):
                        counts[colour][base + column_of[x]] += 2
        view.shots = blobs(red_runs, row_step)
        if ship[0] >= 60:
            view.ship_x = (ship[1] / ship[0] - GLYPH_CENTRE_X) / CELL_W
            # The bottom row of the ship's art is the row below its centre.
            view.ship_y = int(ship[2] / CELL_H) - 1
        return view

    def signature(self):
        """A sample of the window's pixels that any glyph moving changes."""
        start = self.pixels + self.win_y * self.stride
        return self.map[start:start + WINDOW_H * self.stride:31]

    def settle(self, previous, bound=0.1):
        """The signature of the window once it differs from previous, or as
        it is after bound seconds (a frame can look like the one before)."""
        deadline = time.monotonic() + bound
        while True:
            now = self.signature()
            if now != previous or time.monotonic() > deadline:
                return now
            time.sleep(0.001)

    def region(self, left, top, width, height):
        """The raw pixels of a region of the window, to compare two looks."""
        parts = []
        for y in range(top, top + height):
            start = self.pixels + (self.win_y + y) * self.stride + (self.win_x + left) * 4
            parts.append(self.map[start:start + width * 4])
        return b"".join(parts)


# From this row down, every pixel row is read.
FINE_FROM_ROW = 11

# Runs of one colour in a row of colour codes.
INK = re.compile(rb"([\x01-\x07])\1*")


def blobs(runs, row_step):
    """Groups red runs (row, start, end) into glyph-sized blobs; returns the
    world positions of the shots they show."""
    groups = []
    open_groups = []
    for y, start, end in runs:
        placed = None
        for group in open_groups:
            if y - group["last"] <= row_step and start < group["right"] + 3 and end > group["left"] - 3:
                placed = group
                break
        if placed is None:
            placed = {"weight": 0, "sum_x": 0.0, "sum_y": 0.0, "first": y, "last": y,
                      "left": start, "right": end}
            open_groups.append(placed)
            groups.append(placed)
        length = end - start
        placed["weight"] += length
        placed["sum_x"] += (start + end) / 2 * length
        placed["sum_y"] += y * length
        placed["last"] = y
        placed["left"] = min(placed["left"], start)
        placed["right"] = max(placed["right"], end)
        open_groups = [g for g in open_groups if y - g["last"] <= row_step]
    shots = []
    for group in groups:
        width = group["right"] - group["left"]
        # Art is big; a shot's glyph is small.
        if group["last"] - group["first"] > 26 or width > 4 * CELL_W:
            continue
        px, py = group["sum_x"] / group["weight"], group["sum_y"] / group["weight"]
        # Shots side by side touch: one blob as wide as two glyphs is two.
        count = max(1, round(width / CELL_W))
        for i in range(count):
            x = px + (i - (count - 1) / 2) * CELL_W
            shots.append(((x - GLYPH_CENTRE_X) / CELL_W, (py - GLYPH_CENTRE_Y) / CELL_H))
    return shots


class View:
    def __init__(self, when):
        self.when = when
        self.counts = {c: [0] * (COLUMNS * ROWS) for c in range(1, 8)}
        self.shots = []
        # The ship's world position, when seen.
        self.ship_x = None
        self.ship_y = None

    def count(self, colour, top=0, bottom=ROWS, left=0, right=COLUMNS):
        cells = self.counts[colour]
        return sum(sum(cells[r * COLUMNS + left:r * COLUMNS + right]) for r in range(top, bottom))

    # What the screen shows. The thresholds are far from what the other
    # screens give: the title's art is about 13,000 counted cyan pixels, a
    # ship about 300; the closing screens' art thousands of red or yellow
    # ones once a few frames have played.
    def splash_shown(self):
        return self.count(GREEN) + self.count(BLUE) > 500

    def title_shown(self):
        return self.count(CYAN, 4, 13) > 4000

    def playing(self):
        return not self.title_shown() and self.ship_x is not None

    def defeat_art(self):
        return self.count(RED, 4, 20)

    def victory_art(self):
        return self.count(YELLOW, 4, 21)

    def boss_shown(self):
        return self.count(MAGENTA) > 400

    def explosions(self):
        """Rows 3 to 15 holding four or more yellow cells side by side: an
        explosion's frame (a pair of the ship's shots is two cells)."""
        found = 0
        cells = self.counts[YELLOW]
        for row in range(3, 16):
            run = 0
            for column in range(COLUMNS):
                if cells[row * COLUMNS + column] >= 4:
                    run += 1
                    if run == 4:
                        found += 1
                else:
                    run = 0
        return found


# --------------------------------------------------------------------------
# Acting


class Controls:
    """xdotool, the only way input reaches the game. Every call is checked."""

    def __init__(self, window, win_x, win_y):
        self.window = window
        self.win_x, self.win_y = win_x, win_y
        self.held = set()
        self.mouse_down = False

    def run(self, *arguments):
        result = subprocess.run(["xdotool", *arguments], capture_output=True, text=True)
        if result.returncode != 0:
            raise Failure(f"xdotool {' '.join(arguments)} failed ({result.returncode}): "
                          f"{result.stderr.strip()}")

    def focus(self):
        self.run("windowfocus", "--sync", self.window)

    def tap(self, key):
        self.run("key", key)

    def hold(self, key):
        if key not in self.held:
            self.run("keydown", key)
            self.held.add(key)

    def release(self, key):
        if key in self.held:
            self.run("keyup", key)
            self.held.discard(key)

    def steering(self):
        """The movement key held, or ""."""
        return next((key for key in "adws" if key in self.held), "")

    def steer(self, wanted):
        """Holds one movement key (a, d, w or s), or none for ""."""
        for key in "adws":
            if key != wanted:
                self.release(key)
        if wanted:
            self.hold(wanted)

    def fire(self, on):
        if on and not self.mouse_down:
            # The pointer stays put for the whole game: the held button is
            # reported with the pointer's cell every step.
            self.run("mousemove", str(self.win_x + WINDOW_W // 2), str(self.win_y + 300))
            self.run("mousedown", "1")
            self.mouse_down = True
        elif not on and self.mouse_down:
            self.run("mouseup", "1")
            self.mouse_down = False

    def let_go(self):
        for key in sorted(self.held):
            self.release(key)
        self.fire(False)


class Game:
    """The game's process, run one step at a time when asked."""

    # clock_nanosleep: the game sleeps there between two steps.
    SLEEP_SYSCALL = "230"

    def __init__(self, pid):
        self.pid = pid
        self.stopped = False

    def alive(self):
        try:
            os.kill(self.pid, 0)
            return True
        except OSError:
            return False

    def syscall(self):
        """The system call the game's main thread waits in, or "running"."""
        try:
            with open(f"/proc/{self.pid}/syscall") as f:
                return f.read().split(" ", 1)[0].strip()
        except OSError:
            raise Failure("the game ended during play")

    def state(self):
        try:
            with open(f"/proc/{self.pid}/stat") as f:
                return f.read().rsplit(")", 1)[1].split()[0]
        except OSError:
            raise Failure("the game ended during play")

    def run_one_step(self):
        """Lets the game go on until it has run one more step and sleeps at
        its end, and stops it there."""
        if self.stopped:
            os.kill(self.pid, signal.SIGCONT)
            self.stopped = False
        deadline = time.monotonic() + 5
        # Out of the sleep it may still be in: the step starts.
        while self.syscall() == self.SLEEP_SYSCALL:
            if time.monotonic() > deadline:
                raise Failure("the game did not wake within 5 s")
            time.sleep(0.0002)
        # Into the sleep at the end of the step.
        while self.syscall() != self.SLEEP_SYSCALL:
            if time.monotonic() > deadline:
                raise Failure("the game did not finish a step within 5 s")
            time.sleep(0.0002)
        os.kill(self.pid, signal.SIGSTOP)
        self.stopped = True
        while self.state() != "T":
            if time.monotonic() > deadline:
                raise Failure("the game did not stop")
            time.sleep(0.0002)

    def release(self):
        if self.stopped:
            os.kill(self.pid, signal.SIGCONT)
            self.stopped = False


# --------------------------------------------------------------------------
# Predicting the enemy shots


class Track:
    """One enemy shot followed from look to look: a straight line fitted to
    where it was seen."""

    def __init__(self, t, x, y, prior):
        self.seen = [(t, x, y)]
        # Where the line puts the shot at the last look.
        self.t, self.x, self.y = t, x, y
        self.vx, self.vy, self.ux, self.uy = prior[:4]
        self.missed = 0

    def last(self):
        return self.t, self.x, self.y

    def at(self, t):
        return self.x + self.vx * (t - self.t), self.y + self.vy * (t - self.t)

    def mature(self):
        return len(self.seen) >= 4

    def add(self, t, x, y, prior):
        self.seen.append((t, x, y))
        self.missed = 0
        # The last two seconds at most.
        while self.seen[-1][0] - self.seen[0][0] > 60:
            self.seen.pop(0)
        n = len(self.seen)
        span = self.seen[-1][0] - self.seen[0][0]
        self.t, self.x, self.y = t, x, y
        if n < 2 or span == 0:
            return
        mt = sum(s[0] for s in self.seen) / n
        mx = sum(s[1] for s in self.seen) / n
        my = sum(s[2] for s in self.seen) / n
        var = sum((s[0] - mt) ** 2 for s in self.seen)
        vx = sum((s[0] - mt) * (s[1] - mx) for s in self.seen) / var
        vy = sum((s[0] - mt) * (s[2] - my) for s in self.seen) / var
        # A short track's slope is unsure: it is blended with the prior
        # until the track is as long as the prior deserves, and the
        # uncertainty shrinks as the track lengthens.
        trust = min(1.0, span / prior[4])
        self.vx = trust * vx + (1 - trust) * prior[0]
        self.vy = trust * vy + (1 - trust) * prior[1]
        self.ux = 0.005 + (1 - trust) * prior[2] + (0.3 / span if n >= 3 else 0.25)
        self.uy = 0.003 + (1 - trust) * prior[3] + (0.2 / span if n >= 3 else 0.15)
        if n >= 3:
            self.x, self.y = mx + vx * (t - mt), my + vy * (t - mt)


class Tracker:
    # Velocities a new shot is assumed to have, with their uncertainty,
    # until it has been seen for a while: (vx, vy, ux, uy) in cells a step,
    # and the steps of track after which the fitted line is trusted alone.
    # A drelk's shots fall at 0.1 and drift 0.05 either way; the boss's fan
    # anything from straight down to a cell a step sideways.
    DRELK_SHOT = (0.0, 0.1, 0.06, 0.01, 8)
    BOSS_SHOT = (0.0, 0.2, 1.05, 0.1, 1)

    def __init__(self):
        self.tracks = []
        self.boss = False

    def clear(self):
        self.tracks = []

    def update(self, t, shots):
        prior = self.BOSS_SHOT if self.boss else self.DRELK_SHOT
        pairs = []
        for i, track in enumerate(self.tracks):
            px, py = track.at(t)
            dt = t - track.last()[0]
            if track.mature():
                gate_x = 0.45 + 2 * track.ux * dt
                gate_y = 0.35 + 2 * track.uy * dt
            else:
                gate_x = 0.5 + track.ux * dt
                gate_y = 0.35 + track.uy * dt
            for j, (x, y) in enumerate(shots):
                dx, dy = abs(x - px) / gate_x, abs(y - py) / gate_y
                if dx < 1 and dy < 1:
                    pairs.append((dx * dx + dy * dy, i, j))
        pairs.sort()
        used_tracks, used_shots = set(), set()
        for _, i, j in pairs:
            if i in used_tracks or j in used_shots:
                continue
            used_tracks.add(i)
            used_shots.add(j)
            self.tracks[i].add(t, *shots[j], prior)
        kept = []
        for i, track in enumerate(self.tracks):
            if i not in used_tracks:
                track.missed += 1
            # A shot not seen for a few looks is gone (out, or wiped).
            if track.missed <= 3:
                kept.append(track)
        for j, (x, y) in enumerate(shots):
            if j not in used_shots:
                kept.append(Track(t, x, y, prior))
        self.tracks = kept


# --------------------------------------------------------------------------
# Choosing where to fly
#
# The game, step by step: the hero's step handler counts its move countdown
# down; the input poll then moves it one cell if a movement key is held and
# the countdown is 0 (the countdown becomes 2, so it moves every second step
# at most); then every shot moves. A shot touches the ship when their boxes
# touch: |dx| <= 3.5 and |dy| <= 2 between the centres. The pilot looks at
# each frame as soon as it is drawn and sends the key for the next step
# before that step reads its input.

# The ship's centre stays within these columns and rows (the game's bounds).
SHIP_LEFT, SHIP_RIGHT = 4, 78
SHIP_BOTTOM = 22
# The highest rows the ship flies in: clear of the drelks' rows, and of the
# boss's.
DRELK_PHASE_TOP, BOSS_PHASE_TOP = 16, 14
# Steps looked ahead.
HORIZON = 60
# Added to the touching distances, in cells, for what the look gets wrong.
MARGIN_X, MARGIN_Y = 0.3, 0.2
# The margins when those leave no way out: about what the look gets wrong.
TIGHT_MARGINS = (0.12, 0.08)
MOVES = {"": (0, 0), "a": (-1, 0), "d": (1, 0), "w": (0, -1), "s": (0, 1)}
INSIDE = sum(1 << x for x in range(SHIP_LEFT, SHIP_RIGHT + 1))


def danger_masks(tracks, t_now, top, steps, margins=(MARGIN_X, MARGIN_Y)):
    """For each step ahead (0 is the frame looked at) and each row from top
    to SHIP_BOTTOM, a bit mask of the ship centres (bit x for column x) a
    shot there would touch."""
    rows = SHIP_BOTTOM - top + 1
    danger = [[0] * rows for _ in range(steps)]
    for track in tracks:
        t0, x0, y0 = track.last()
        for step in range(steps):
            dt = t_now + step - t0
            y = y0 + track.vy * dt
            reach_y = 2.0 + margins[1] + track.uy * dt
            if y < top - reach_y:
                continue
            if y > SHIP_BOTTOM + reach_y:
                break
            x = x0 + track.vx * dt
            reach_x = 3.5 + margins[0] + track.ux * dt
            low = max(0, math.floor(x - reach_x) + 1)
            high = min(COLUMNS, math.ceil(x + reach_x) - 1)
            if high < low:
                continue
            span = ((1 << (high - low + 1)) - 1) << low
            step_rows = danger[step]
            for row in range(max(top, math.floor(y - reach_y) + 1),
                             min(SHIP_BOTTOM, math.ceil(y + reach_y) - 1) + 1):
                step_rows[row - top] |= span
    return danger


def spread(masks, r):
    """The positions one move from those in row r of masks, and themselves."""
    v = masks[r] | (masks[r] << 1) | (masks[r] >> 1)
    if r > 0:
        v |= masks[r - 1]
    if r < len(masks) - 1:
        v |= masks[r + 1]
    return v


def survivable(blocked, horizon):
    """free0[k], free1[k]: the positions (bit masks by row) from which the
    ship, at the input of step k with its countdown at 0 (may move) or 1
    (may not), can fly untouched to step horizon."""
    rows = len(blocked[1])
    free0 = [None] * (horizon + 1)
    free1 = [None] * (horizon + 1)
    free0[horizon] = [INSIDE & ~blocked[horizon][r] for r in range(rows)]
    free1[horizon] = list(free0[horizon])
    for k in range(horizon - 1, 0, -1):
        clear = [INSIDE & ~blocked[k][r] for r in range(rows)]
        after0, after1 = free0[k + 1], free1[k + 1]
        free1[k] = [clear[r] & after0[r] for r in range(rows)]
        # Moving now: to a clear place from which, unable to move next
        # step, the ship survives.
        landing = [clear[r] & after1[r] for r in range(rows)]
        free0[k] = [INSIDE & ((clear[r] & after0[r]) | spread(landing, r)) for r in range(rows)]
    return free0, free1


def plan(tracks, t_now, ship, countdown, committed, top, preference):
    """The key to hold from the step after next ("" for none), and the steps
    the ship is sure to last with it: planned with margins round the shots,
    or, when that finds no way out, with tight ones."""
    key, lasts = plan_with(tracks, t_now, ship, countdown, committed, top, preference,
                           (MARGIN_X, MARGIN_Y))
    if lasts >= 8:
        return key, lasts
    return plan_with(tracks, t_now, ship, countdown, committed, top, preference, TIGHT_MARGINS)


def plan_with(tracks, t_now, ship, countdown, committed, top, preference, margins):
    """plan() with the given margins (cells added to the touching distances
    in x and y). The steps lasted are HORIZON when the ship lasts all of the
    look ahead.

    The frame looked at is step 0. The key for step 1 is already given
    (committed: the game reads it before the pilot can answer); the choice
    is the key for step 2. countdown: 0 when the ship may move in step 1
    (it did not move in step 0), 1 when it may not, None when unknown (both
    are then planned for). Among the keys that last longest, the one
    leaving the ship the most room further on wins, then preference(x, y)."""
    rows = SHIP_BOTTOM - top + 1
    danger = danger_masks(tracks, t_now, top, HORIZON + 1, margins)
    # During step k the ship meets the shots where they were (its own move)
    # and where they go (theirs).
    blocked = [None] + [[danger[k - 1][r] | danger[k][r] for r in range(rows)]
                        for k in range(1, HORIZON + 1)]

    def lands(x, y, key, countdown):
        """Where a step with key held leaves the ship, and its countdown for
        the next step; None when the move would leave the rows planned."""
        if countdown == 1 or not key:
            return x, y, 0
        dx, dy = MOVES[key]
        if not SHIP_LEFT <= x + dx <= SHIP_RIGHT or y + dy > SHIP_BOTTOM:
            return x, y, 1
        if y + dy < top:
            return None
        return x + dx, y + dy, 1

    starts = []
    for countdown_now in ((0, 1) if countdown is None else (countdown,)):
        after = lands(ship[0], ship[1], committed, countdown_now)
        if after is None or not top <= after[1] <= SHIP_BOTTOM:
            return committed, 0
        if blocked[1][after[1] - top] >> after[0] & 1:
            return committed, 0
        starts.append(after)

    horizon = HORIZON
    while True:
        free0, free1 = survivable(blocked, horizon)
        keys = []
        for key in MOVES:
            ends = [lands(x, y, key, countdown_next) for x, y, countdown_next in starts]
            if all(end is not None and not blocked[2][end[1] - top] >> end[0] & 1 and
                   (horizon < 3 or (free1 if end[2] else free0)[3][end[1] - top] >> end[0] & 1)
                   for end in ends):
                keys.append((key, ends))
        if keys or horizon <= 3:
            break
        horizon //= 2
    if not keys:
        return committed, 1

    def room(x, y):
        # Places reachable untouched at the end of the look ahead.
        reach = [0] * rows
        reach[y - top] = 1 << x
        for k in range(4, horizon + 1, 2):
            reach = [INSIDE & ~(blocked[k][r] | blocked[k - 1][r]) & spread(reach, r)
                     for r in range(rows)]
        return sum(bin(v).count("1") for v in reach)

    def score(choice):
        key, ends = choice
        x, y, _ = ends[0]
        if key and ends[0][:2] == starts[0][:2]:
            # Not moved yet: it will next step.
            dx, dy = MOVES[key]
            if SHIP_LEFT <= x + dx <= SHIP_RIGHT and top <= y + dy <= SHIP_BOTTOM:
                x, y = x + dx, y + dy
        return room(x, y) + (2 if key == committed else 0) + preference(x, y)

    return max(keys, key=score)[0], horizon


# --------------------------------------------------------------------------
# The scenarios


class Pilot:
    def __init__(self, screen, controls, game):
        self.screen = screen
        self.controls = controls
        self.game = game

    def alive(self):
        return self.game.alive()

    def wait_for(self, what, bound, test):
        """Looks until test(view) holds, for up to bound seconds."""
        deadline = time.monotonic() + bound
        while True:
            view = self.screen.look()
            if test(view):
                return view
            if not self.alive():
                raise Failure(f"the game ended while waiting: {what}")
            if time.monotonic() > deadline:
                raise Failure(f"{what} (waited {bound} s)")
            time.sleep(0.03)

    def skip_splash(self):
        log("waiting for the splash")
        self.wait_for("no splash on the screen", 15, View.splash_shown)
        log("skipping the splash with a key")
        self.controls.tap("x")
        self.wait_for("the title did not come after the splash was skipped", 10, View.title_shown)

    def start_game(self):
        log("title shown; P starts a game")
        self.controls.tap("p")
        return self.wait_for("P did not start a game (no ship, or the title stays)", 10, View.playing)

    def back_to_title_and_quit(self):
        log("waiting for the title to come back")
        self.wait_for("the title did not come back after the closing screen", 25, View.title_shown)
        self.quit_from_title()

    def quit_from_title(self):
        # A moment on the title first, so that the recording holds its steps.
        time.sleep(1)
        if not self.screen.look().title_shown():
            raise Failure("the title went away by itself")
        log("title shown; Q quits")
        self.controls.tap("q")

    def ship_moved(self, key, cells, bound):
        """Holds key until the ship's x has changed by cells that way."""
        start = self.wait_for("no ship on the screen", 5, View.playing).ship_x
        self.controls.hold(key)
        sign = 1 if cells > 0 else -1
        self.wait_for(f"holding {key.upper()} did not move the ship {abs(cells)} cells", bound,
                      lambda v: v.ship_x is not None and sign * (v.ship_x - start) >= abs(cells))
        self.controls.release(key)

    # defeat ---------------------------------------------------------------

    def defeat(self):
        controls = self.controls
        self.skip_splash()
        self.start_game()
        log("moving right with D held, then left with A")
        self.ship_moved("d", 6, 5)
        self.ship_moved("a", -2, 5)
        log("firing until drelks explode")
        controls.fire(True)
        kills = 0
        deadline = time.monotonic() + 20
        seen_before = False
        while kills < 3:
            view = self.screen.look()
            now = view.explosions() > 0
            if now and not seen_before:
                kills += 1
                log(f"explosion {kills}")
            seen_before = now
            if view.defeat_art() > 2000:
                raise Failure("the ship was shot down before three drelks fell")
            if time.monotonic() > deadline:
                raise Failure(f"only {kills} explosions in 20 s of firing")
            time.sleep(0.02)
        log("wiping the enemy shots with Space")
        wipe_digit = (204, 34, 24, 30)
        before = self.screen.region(*wipe_digit)
        controls.tap("space")
        self.wait_for("Space did not change the wipe counter", 5,
                      lambda v: self.screen.region(*wipe_digit) != before)
        log("pausing with F10")
        controls.tap("F10")
        whole = (0, 0, WINDOW_W, WINDOW_H)
        still = [self.screen.region(*whole)]

        def held(_view):
            now = self.screen.region(*whole)
            same = now == still[0]
            still[0] = now
            return same

        self.wait_for("F10 did not hold the screen still", 5, held)
        time.sleep(1.5)
        if self.screen.region(*whole) != still[0]:
            raise Failure("the screen changed during the pause")
        log("resuming with another key")
        controls.tap("x")
        self.wait_for("a key did not resume the game", 5,
                      lambda v: self.screen.region(*whole) != still[0])
        log("flying up into the drelks with W held")
        controls.hold("w")
        self.wait_for("the ship met nothing on its way up: no defeat screen", 25,
                      lambda v: v.defeat_art() > 2000)
        controls.let_go()
        log("defeat screen shown")
        self.back_to_title_and_quit()
        return 0

    # splash ----------------------------------------------------------------

    def splash(self):
        log("waiting for the splash to run out by itself")
        self.wait_for("no splash on the screen", 15, View.splash_shown)
        self.wait_for("the title did not come after the splash", 30, View.title_shown)
        self.quit_from_title()
        return 0

    # victory ---------------------------------------------------------------

    def victory(self):
        controls = self.controls
        self.skip_splash()
        self.start_game()
        controls.fire(True)
        outcome = self.fight()
        controls.let_go()
        log(f"the game ended in {outcome}")
        self.back_to_title_and_quit()
        return 0 if outcome == "victory" else 2

    def fight(self):
        """Flies, dodges and wipes until the ship is gone; then watches the
        closing screen and tells which one it was.

        The pilot plays in step with the game: it stops the game (its own
        process, SIGSTOP) when a step has ended, looks, chooses, sends the
        keys, and lets the game run its next step (SIGCONT). The game reads
        its input at the start of a step, right after showing the frame of
        the step before; stopped at the end of step m it shows the frame of
        step m - 1, has read the keys for step m, and will read the keys
        sent now in step m + 1."""
        screen, controls, game = self.screen, self.controls, self.game
        tracker = Tracker()
        started = time.monotonic()
        step = 0
        signature = screen.signature()
        previous_ship = None
        committed = controls.steering()
        nukes, last_nuke = 5, -1000
        unseen = 0
        last_report = started
        try:
            while True:
                game.run_one_step()
                signature = screen.settle(signature)
                view = screen.look()
                step += 1
                if view.ship_x is None:
                    unseen += 1
                    if unseen >= 10:
                        break
                    previous_ship = None
                    continue
                unseen = 0
                if not tracker.boss and view.boss_shown():
                    tracker.boss = True
                    log(f"the boss is here at step {step}, {time.monotonic() - started:.0f} s")
                tracker.update(step, view.shots)
                ship = (round(view.ship_x), view.ship_y)
                countdown = None if previous_ship is None else (1 if ship != previous_ship else 0)
                previous_ship = ship
                if tracker.boss:
                    top = BOSS_PHASE_TOP

                    def preference(x, y):
                        # Under the boss, where the ship's shots hit it.
                        return -6 * max(0, 30 - x, x - 50) - 2 * abs(y - 19)
                else:
                    top = DRELK_PHASE_TOP

                    def preference(x, y):
                        return -abs(x - 40) // 4 - 2 * abs(y - 20)
                key, survives = plan(tracker.tracks, step, ship, countdown, committed, top,
                                     preference)
                if survives < 8 and nukes > 0 and step - last_nuke > 8:
                    controls.tap("space")
                    nukes -= 1
                    last_nuke = step
                    log(f"step {step}: cornered at {ship} (safe for {survives} steps): wipe, "
                        f"{nukes} left")
                controls.steer(key)
                committed = key
                if DEBUG:
                    DEBUG.write(repr((step, round(time.monotonic() - started, 3), ship, countdown,
                                      key, survives,
                                      [(round(x, 2), round(y, 2)) for x, y in view.shots],
                                      [tuple(round(v, 3) for v in
                                             (*tr.last(), tr.vx, tr.vy, tr.ux, tr.uy))
                                       for tr in tracker.tracks])) + "\n")
                if time.monotonic() - last_report > 15:
                    last_report = time.monotonic()
                    log(f"step {step}: ship at {ship}, {len(tracker.tracks)} shots seen, "
                        f"{nukes} wipes left{', boss' if tracker.boss else ''}")
        finally:
            game.release()
        controls.let_go()
        # The closing art plays for about five seconds; its colour tells
        # which screen it is.
        red = yellow = 0
        while True:
            view = self.screen.look()
            if view.title_shown():
                break
            red = max(red, view.defeat_art())
            yellow = max(yellow, view.victory_art())
            if not self.alive():
                raise Failure("the game ended on the closing screen")
            if time.monotonic() - started > 1800:
                raise Failure("no title after the closing screen")
            time.sleep(0.03)
        log(f"closing art: {red} red, {yellow} yellow")
        if yellow > 3000 and red < 1000:
            return "victory"
        if red > 3000:
            return "defeat"
        raise Failure(f"cannot tell the closing screen ({red} red, {yellow} yellow counted)")


def main(arguments):
    if len(arguments) != 7:
        print(__doc__, file=sys.stderr)
        return 1
    framebuffer, window, win_x, win_y, game_pid, scenario = arguments[1:]
    try:
        screen = Screen(framebuffer, int(win_x), int(win_y))
        controls = Controls(window, int(win_x), int(win_y))
        pilot = Pilot(screen, controls, Game(int(game_pid)))
        play = {"defeat": pilot.defeat, "victory": pilot.victory, "splash": pilot.splash}.get(scenario)
        if play is None:
            raise Failure(f"no scenario '{scenario}'")
        controls.focus()
        try:
            return play()
        finally:
            controls.let_go()
    except Failure as failure:
        print(f"pilot: FAIL: {failure}", file=sys.stderr, flush=True)
        return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv))
