#!/usr/bin/env python3
"""Prints the table of ratios from the JSON files that the benchmarks wrote; exit 1 when a bound is missed.

    table.py FILE.json...

A figure is the fastest of the repetitions, in processor time, so that other work on the machine does not count.
The reference of a row ran in the same process, its repetitions mixed with those of what is measured.
"""
import json
import sys

MIB = 1024.0 * 1024.0


class Results:
    def __init__(self, paths):
        self.runs = {}
        for path in paths:
            with open(path, encoding="utf-8") as file:
                for run in json.load(file)["benchmarks"]:
                    if run["run_type"] != "iteration":
                        continue
                    if run.get("error_occurred"):
                        sys.exit(f"{path}: {run['name']}: {run.get('error_message')}")
                    self.runs.setdefault(run["name"].split("/")[0], []).append(run)

    def best(self, name):
        return min(self.runs[name], key=lambda run: run["cpu_time"])

    def time(self, name):
        """Processor time of one turn in microseconds."""
        run = self.best(name)
        return run["cpu_time"] * {"ns": 1e-3, "us": 1, "ms": 1e3, "s": 1e6}[run["time_unit"]]

    def real_time(self, name):
        run = self.best(name)
        return run["real_time"] * {"ns": 1e-3, "us": 1, "ms": 1e3, "s": 1e6}[run["time_unit"]]

    def counter(self, name, counter):
        return self.best(name)[counter]


def duration(microseconds):
    for unit, factor in (("s", 1e6), ("ms", 1e3)):
        if microseconds >= factor:
            return f"{microseconds / factor:.3g} {unit}"
    return f"{microseconds:.3g} us"


def number(value):
    return f"{value:.0f}" if value >= 100 else f"{value:.2g}" if value < 10 else f"{value:.3g}"


class Rate:
    """Share of the reference's speed, at least `bound`."""

    def __init__(self, bound):
        self.bound = bound

    def row(self, results, name, reference):
        measured, other = results.time(name), results.time(reference)
        ratio = other / measured
        return duration(measured), duration(other), f"{ratio:.0%}", f">= {self.bound:.0%}", ratio >= self.bound


class Multiple:
    """Multiple of the reference's time, at most `bound`."""

    def __init__(self, bound):
        self.bound = bound

    def row(self, results, name, reference):
        measured, other = results.time(name), results.time(reference)
        ratio = measured / other
        return duration(measured), duration(other), f"{ratio:.2f}", f"<= {self.bound}", ratio <= self.bound


class Limit:
    """A time of at most `bound` microseconds for one of `parts` equal parts of a turn."""

    def __init__(self, bound, parts=1):
        self.bound = bound
        self.parts = parts

    def row(self, results, name, reference):
        measured = results.time(name) / self.parts
        other = results.time(reference) if reference else None
        ratio = number(measured / other) if other else "-"
        return (duration(measured), duration(other) if other else "-", ratio, f"<= {duration(self.bound)}",
                measured <= self.bound)


class Throughput:
    """At least `bound` MB/s; the reference's speed stands beside it."""

    def __init__(self, bound):
        self.bound = bound

    def row(self, results, name, reference):
        measured = results.counter(name, "bytes_per_second") / 1e6
        other = results.counter(reference, "bytes_per_second") / 1e6
        return (f"{number(measured)} MB/s", f"{number(other)} MB/s", f"{measured / other:.0%}",
                f">= {self.bound} MB/s", measured >= self.bound)


class Wait:
    """Processor time of a wait, at most `bound` microseconds; the reference is how long it lasted."""

    def __init__(self, bound):
        self.bound = bound

    def row(self, results, name, _reference):
        measured, lasted = results.time(name), results.real_time(name)
        return (duration(measured), duration(lasted), f"{measured / lasted:.2%}",
                f"<= {duration(self.bound)}", measured <= self.bound)


class Added:
    """Processor time beside waits that only a clock counts, at most `bound` of them."""

    def __init__(self, bound):
        self.bound = bound

    def row(self, results, name, _reference):
        measured, waited = results.time(name), results.counter(name, "waited_us")
        ratio = measured / waited
        return duration(measured), duration(waited), f"{ratio:.2%}", f"<= {self.bound:.0%}", ratio <= self.bound


class Heap:
    """Bytes, at most `bound`; the reference is the size of what passed through."""

    def __init__(self, bound, passed):
        self.bound = bound
        self.passed = passed

    def row(self, results, name, _reference):
        measured = results.counter(name, "heap_growth")
        return (f"{measured / MIB:.2f} MiB", f"{self.passed / MIB:.0f} MiB", f"{measured / self.passed:.2%}",
                f"<= {self.bound / MIB:.0f} MiB", measured <= self.bound)


ROWS = [
    # what, benchmark, its reference, bound
    (".txt waveform, 524288 values / from_chars loop", "txt_waveform", "txt_waveform_reference", Rate(0.8)),
    (".wdb array, 524288 points / copy and swap", "wdb_waveform", "wdb_waveform_reference", Rate(0.7)),
    ("load 256 steps x 2 channels / from_chars", "sequence_load", "sequence_load_reference", Multiple(2.5)),
    ("save the same / to_chars", "sequence_save", "sequence_save_reference", Multiple(2.5)),
    ("sequence text of the same / to_chars", "sequence_text", "sequence_text_reference", Multiple(2.5)),
    ("query, command layer to instrument / bare VISA", "query", "query_reference", Limit(20)),
    ("the same over NI-488.2", "query_ni_gpib", "query_reference", Limit(20)),
    ("the same over IEEE_32M", "query_ieee32m", "query_reference", Limit(20)),
    ("the same over USB488", "query_usb488", "query_reference", Limit(20)),
    ("the same, simulated", "query_simulated", "query_reference", Limit(20)),
    ("start and stop of five instruments / waits", "five_instruments", None, Added(0.01)),
    ("tick of the run monitor / one bare query", "monitor_tick", "query_reference", Limit(100)),
    ("1 MiB block to the instrument / copy", "block_to_instrument", "block_to_instrument_reference",
     Throughput(53)),
    ("128 waveforms of 1 MiB, heap growth", "waveform_memory", None, Heap(4 * MIB, 128 * MIB)),
    ("transfer wait, console, processor time", "console_wait", None, Wait(50e3)),
    ("transfer wait, window, processor time", "window_wait", None, Wait(50e3)),
    ("cell entry, 256 steps / copy of the sequence", "cell_entry", "editing_reference", Limit(16e3)),
    ("jump entry, all rows recoloured / copy", "jump_entry", "editing_reference", Limit(16e3)),
    ("insert at step 1, undo (mean) / copy", "insert_row_and_undo", "editing_reference", Limit(16e3, 2)),
    ("paste 256 x 9 cells / copy", "paste_cells", "editing_reference", Limit(50e3)),
    ("paste 256 x 9 cells as text / copy", "paste_text", "editing_reference", Limit(50e3)),
    ("grids: rebuild, 256 steps / paint empty views", "grids_rebuild", "grids_reference", Limit(16e3)),
    ("grids: jump entry with its repaint / same", "grids_cell_entry", "grids_reference", Limit(16e3)),
    ("grids: insert at step 1 / same", "grids_insert", "grids_reference", Limit(16e3)),
    ("grids: undo of it / same", "grids_undo", "grids_reference", Limit(16e3)),
    ("grids: paste 256 x 9 cells as text / same", "grids_paste", "grids_reference", Limit(50e3)),
    ("grids: move the running step's mark / same", "grids_highlight", "grids_reference", Limit(16e3)),
    ("view: drag a level, 256 x 2, one frame / lines", "view_drag_level", "view_reference", Limit(16e3)),
    ("view: drag a step's end, one frame / same", "view_drag_end", "view_reference", Limit(16e3)),
    ("signal: repaint, 2 x 524288 points / strokes", "signal_repaint", "signal_reference", Limit(16e3)),
    ("waveforms: dialog over 128 files / empty grid", "waveform_dialog_open", "waveform_dialog_reference",
     Limit(100e3)),
    ("waveforms: preview, 524288 points / strokes", "waveform_preview", "waveform_preview_reference", Limit(16e3)),
]


def main():
    results = Results(sys.argv[1:])
    lines = [("what", "measured", "reference", "ratio", "bound", "ok")]
    missed = 0
    for what, name, reference, bound in ROWS:
        absent = [each for each in (name, reference) if each and each not in results.runs]
        if absent:
            lines.append((what, "not measured", "-", "-", "-", "no"))
            missed += 1
            continue
        *texts, kept = bound.row(results, name, reference)
        missed += not kept
        lines.append((what, *texts, "yes" if kept else "NO"))
    widths = [max(len(line[column]) for line in lines) for column in range(len(lines[0]))]
    for line in lines:
        print("  ".join(text.ljust(width) for text, width in zip(line, widths)).rstrip())
    if missed:
        print(f"{missed} of {len(ROWS)} bounds missed")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
