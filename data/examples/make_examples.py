#!/usr/bin/env python3
"""Writes the example sequences and their waveforms into the folder of this script.

The files are what the program itself writes: opening and saving one changes no byte. Run the script again
after changing it; the result depends on nothing but the script.
"""

import copy
import math
import pathlib

FOLDER = pathlib.Path(__file__).resolve().parent
POINTS = 4096
FULL_SCALE = 32767

# Codes of the sequence file
SIN, SQU, NOIS, DC, USER = range(5)
CONST, KEEP, SWEEP = range(3)
WAVEFORM, ARB, FREQUENCY, AMPLITUDE, RANGE, OFFSET, PHASE, DUTY, EXTERNAL = range(9)
NAMES = {"waveform": WAVEFORM, "arb": ARB, "frequency": FREQUENCY, "amplitude": AMPLITUDE, "range": RANGE,
         "offset": OFFSET, "phase": PHASE, "duty": DUTY, "external": EXTERNAL}


def number(value):
    """Shortest text with at most 15 significant digits."""
    return ("%.15g" % value).upper()


class Channel:
    """What one channel does in one step; a new step goes on with the values of the step before."""

    def __init__(self):
        self.values = {WAVEFORM: SIN, ARB: 1, FREQUENCY: 1000, AMPLITUDE: 0, RANGE: 0, OFFSET: 0, PHASE: 0,
                       DUTY: 50, EXTERNAL: 0}
        self.modes = dict.fromkeys(self.values, CONST)

    def set(self, settings):
        self.modes = dict.fromkeys(self.values, CONST)
        for name, value in settings.items():
            if name.startswith("sweep_"):
                name = name[len("sweep_"):]
                self.modes[NAMES[name]] = SWEEP
            self.values[NAMES[name]] = value

    def line(self):
        return ",".join("%d,%s,0" % (self.modes[p], number(self.values[p])) for p in sorted(self.values))


class Sequence:
    def __init__(self, channels=2):
        self.channels = channels
        self.waveforms = {}     # ARB number: file name
        self.user_units = {}    # (channel, parameter): "unit,m,n"
        self.areas = ["0,0,0,0"] * 5
        self.steps = []
        self.cells = [[] for _ in range(channels)]
        self.current = [Channel() for _ in range(channels)]

    def step(self, seconds, ch1=None, ch2=None, jump=None, stop=False):
        """jump: (step number counted from 1, count)"""
        jump_fields = "1,%d,1,%d" % jump if jump else "0,1,0,1"
        self.steps.append("%s,0,0,0,0,0,1,0,1,%s,%d,0" % (number(seconds), jump_fields, 1 if stop else 0))
        for channel, settings in list(enumerate((ch1, ch2)))[:self.channels]:
            self.current[channel].set(settings or {})
            self.cells[channel].append(copy.deepcopy(self.current[channel]).line())

    def lines(self):
        yield "[FILE]"
        yield "PROGID=CORLUNE"
        yield "VERNO=1.00"
        yield "[SYSTEM]"
        yield "SS_MODEL=" + ("QM2220" if self.channels == 2 else "QM2210")
        yield "SS_CNT=1"
        yield "SS_INTERFACE0=0"
        yield "SS_ADDRESS0=0"
        yield "SS_SERIALNO0="
        yield "SS_CHNCNT0=%d" % self.channels
        yield "[COMMON]"
        for channel in range(self.channels + 1):
            yield "CP_LOAD#%d=0,10000" % channel
        for channel in range(self.channels):
            for param in range(10):
                unit = self.user_units.get((channel, param))
                yield "CP_USERSCL#%d#%d=%s" % (channel, param, "1,0," + unit if unit else "0,0,usr,1,0")
        for slot in range(128):
            yield "CP_ARBFILE#%d=%s" % (slot, self.waveforms.get(slot + 1, ""))
        yield "[MODE]"
        for channel in range(self.channels + 1):
            yield "MD_MODESET0%d=0,0" % channel
        yield "[DATA]"
        yield "CM_START=1"
        yield "CM_TRIG=0"
        yield "CM_EXTCTRL=0"
        yield "CM_MLTIO=0"
        yield "CM_SYNCOUT=0"
        for slot, step in enumerate(self.steps):
            yield "ST_SETVAL#%d=%s" % (slot, step)
        for channel in range(self.channels):
            for slot, cells in enumerate(self.cells[channel]):
                yield "SE_SETVAL#%d#%d=%s" % (channel, slot, cells)
        yield "[FRMVIEW]"
        for area, values in enumerate(self.areas):
            yield "FV_AREASET%d=%s" % (area, values)

    def write(self, name):
        text = "".join(line + "\r\n" for line in self.lines())
        (FOLDER / name).write_bytes(text.encode("ascii"))


# Sequence view areas: shown, scale, content (0 frequency, 3 phase, 5 envelope), channel
ENVELOPE_1, ENVELOPE_2 = "1,0,5,0", "1,0,5,1"
FREQUENCY_1, PHASE_2 = "1,0,0,0", "1,0,3,1"


def areas(*shown):
    return list(shown) + ["0,0,0,0"] * (5 - len(shown))


def quick_tour():
    sequence = Sequence()
    sequence.waveforms[1] = "heartbeat.txt"
    sequence.areas = areas(ENVELOPE_1, FREQUENCY_1, ENVELOPE_2)
    sequence.step(1, {"waveform": SIN, "frequency": 1000, "amplitude": 2},
                  {"waveform": SIN, "frequency": 1000, "amplitude": 2, "phase": 90})
    sequence.step(2, {"sweep_frequency": 5000}, {"sweep_frequency": 5000})
    sequence.step(1, {"sweep_amplitude": 4}, {"sweep_offset": 1})
    sequence.step(1, {"waveform": USER, "arb": 1, "frequency": 2}, {"waveform": DC, "offset": 5})
    sequence.step(0.5, {"waveform": DC}, {"offset": 0}, jump=(4, 2))
    sequence.step(1, {"waveform": SQU, "frequency": 1000, "duty": 25},
                  {"waveform": SQU, "frequency": 1000, "duty": 75})
    sequence.step(0.5, {"waveform": SIN, "sweep_amplitude": 0}, {"waveform": SIN, "sweep_amplitude": 0}, stop=True)
    sequence.write("quick-tour.dat")


def ramp():
    sequence = Sequence(channels=1)
    sequence.areas = areas(ENVELOPE_1)
    sequence.step(1, {"waveform": DC, "offset": 0})
    sequence.step(5, {"sweep_offset": 5})
    sequence.step(2)
    sequence.step(10, {"sweep_offset": -5})
    sequence.step(2)
    sequence.step(5, {"sweep_offset": 0})
    sequence.step(1, stop=True)
    sequence.write("ramp.dat")


def frequency_sweep():
    sequence = Sequence()
    sequence.areas = areas(FREQUENCY_1, ENVELOPE_1)
    marker = {"waveform": DC, "offset": 5}
    sequence.step(1, {"waveform": SIN, "frequency": 10, "amplitude": 2}, marker)
    for decade in (10, 100, 1000, 10000, 100000):
        for factor in (2, 5, 10):
            # Channel 2 falls to 0 V at the end of each decade, to trigger a recorder.
            sequence.step(0.5, {"sweep_frequency": decade * factor}, {"offset": 0 if factor == 10 else 5})
    sequence.step(1, {}, {"offset": 0}, stop=True)
    sequence.write("frequency-sweep.dat")


def voltage_dip():
    sequence = Sequence()
    sequence.areas = areas(ENVELOPE_1, ENVELOPE_2)
    nominal = 10

    def both(percent, sweep=False, **settings):
        key = "sweep_amplitude" if sweep else "amplitude"
        return [dict(settings, **{key: nominal * percent / 100}, phase=phase) for phase in (0, 120)]

    sequence.step(2, *both(100, waveform=SIN, frequency=50))
    for percent, seconds in ((0, 0.02), (40, 0.2), (70, 0.5)):
        sequence.step(seconds, *both(percent))
        sequence.step(2, *both(100), jump=(1, 2) if percent == 70 else None)
    sequence.step(0.15, *both(20))
    sequence.step(1.35, *both(90, sweep=True))
    sequence.step(0.5, *both(100, sweep=True))
    sequence.step(2, *both(100), stop=True)
    sequence.write("voltage-dip.dat")


def cranking():
    sequence = Sequence()
    sequence.waveforms[1] = "crank-ripple.txt"
    # A power amplifier with gain 2 makes the battery voltage from channel 1.
    sequence.user_units[(0, AMPLITUDE)] = "Vbat,2,0"
    sequence.user_units[(0, OFFSET)] = "Vbat,2,0"
    sequence.areas = areas(ENVELOPE_1, ENVELOPE_2)
    sequence.step(1, {"waveform": DC, "offset": 12 / 2}, {"waveform": DC, "offset": 0})
    sequence.step(0.005, {"sweep_offset": 4.5 / 2}, {"offset": 5})
    sequence.step(0.015)
    sequence.step(0.05, {"sweep_offset": 6.5 / 2})
    sequence.step(10, {"waveform": USER, "arb": 1, "frequency": 2, "amplitude": 2 / 2})
    sequence.step(0.1, {"waveform": DC, "sweep_offset": 12 / 2}, {"offset": 0})
    sequence.step(2, stop=True)
    sequence.write("cranking.dat")


def phase_shift():
    sequence = Sequence()
    sequence.areas = areas(PHASE_2, ENVELOPE_1, ENVELOPE_2)
    both = {"waveform": SIN, "frequency": 1000, "amplitude": 2}
    sequence.step(1, both, both)
    for phase in (45, 90, 135, 180):
        sequence.step(1, {}, {"phase": phase})
    sequence.step(5, {}, {"sweep_phase": 0}, jump=(2, 1))
    sequence.step(1, stop=True)
    sequence.write("phase-shift.dat")


def arb_burst():
    sequence = Sequence()
    sequence.waveforms = {1: "gaussian-burst.txt", 2: "chirp.txt"}
    sequence.areas = areas(ENVELOPE_1, ENVELOPE_2)
    sequence.step(0.2, {"waveform": DC}, {"waveform": DC})
    sequence.step(0.05, {"waveform": USER, "arb": 1, "frequency": 20, "amplitude": 10}, {"offset": 5})
    sequence.step(0.2, {"waveform": DC}, {"offset": 0}, jump=(2, 9))
    sequence.step(1, {}, {"waveform": USER, "arb": 2, "frequency": 1, "amplitude": 4})
    sequence.step(0.2, {}, {"waveform": DC}, stop=True)
    sequence.write("arb-burst.dat")


def write_waveform(name, shape):
    """shape: function of the position 0..1 in the period; scaled to full scale."""
    samples = [shape(i / POINTS) for i in range(POINTS)]
    peak = max(abs(sample) for sample in samples)
    lines = "".join("%d\r\n" % round(sample / peak * FULL_SCALE) for sample in samples)
    (FOLDER / name).write_bytes(lines.encode("ascii"))


def heartbeat(t):
    waves = ((0.20, 0.12, 0.025), (0.36, -0.15, 0.008), (0.39, 1.0, 0.011), (0.42, -0.25, 0.010), (0.62, 0.30, 0.04))
    return sum(height * math.exp(-((t - center) / width) ** 2 / 2) for center, height, width in waves)


def gaussian_burst(t):
    return math.exp(-((t - 0.5) / 0.1) ** 2 / 2) * math.sin(2 * math.pi * 20 * t)


def chirp(t):
    return math.sin(2 * math.pi * (5 * t + 45 * t * t))


def crank_ripple(t):
    # Four compression strokes a period, each a quick rise and a slow fall.
    return sum(math.sin(2 * math.pi * 4 * k * t) / k for k in (1, 2, 3))


def main():
    for name, shape in (("heartbeat.txt", heartbeat), ("gaussian-burst.txt", gaussian_burst), ("chirp.txt", chirp),
                        ("crank-ripple.txt", crank_ripple)):
        write_waveform(name, shape)
    for make in (quick_tour, ramp, frequency_sweep, voltage_dip, cranking, phase_shift, arb_burst):
        make()


if __name__ == "__main__":
    main()
