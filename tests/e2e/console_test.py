"""The console program as a process: its commands on the example sequences, its refusals, and runs on the
virtual instrument in real time.

usage: console_test.py <folder of the programs> <folder of the shipped data> files|runs
"""
import fcntl
import os
import pty
import re
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest

PROGRAMS = os.path.abspath(sys.argv[1])
DATA = os.path.abspath(sys.argv[2])
EXAMPLES = os.path.join(DATA, "examples")
CONSOLE = os.path.join(PROGRAMS, "corlune-cli")
DEFINITION = "Corlune_Std.ini"
BUSY_SECONDS = 6  # of the processor, for all runs; they take half a second
# Seconds that the shipped examples take.
SECONDS = {"arb-burst.dat": 3.9, "cranking.dat": 13.17, "frequency-sweep.dat": 9.5, "phase-shift.dat": 20,
           "quick-tour.dat": 10, "ramp.dat": 26, "voltage-dip.dat": 30.16}


def wait_until(condition):
    end = time.monotonic() + 60
    while not condition() and time.monotonic() < end:
        time.sleep(0.05)


def sequences():
    return sorted(name for name in os.listdir(EXAMPLES) if name.endswith(".dat"))


def example(name):
    return os.path.join(EXAMPLES, name)


def read(path):
    with open(path, "rb") as file:
        return file.read()


class Bench(unittest.TestCase):
    """An application folder with the shipped model definition and nothing else."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="corlune-console-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.out = tempfile.mkdtemp(prefix="corlune-console-out-")
        self.addCleanup(shutil.rmtree, self.out)
        self.temporary = os.path.join(self.out, "temporary")
        os.mkdir(self.temporary)
        shutil.copy(os.path.join(DATA, DEFINITION), self.folder)

    def environment(self, **more):
        clean = {key: value for key, value in os.environ.items() if not key.startswith("CORLUNE_")}
        return {**clean, "TMPDIR": self.temporary, **more}

    def start(self, *arguments, before=(), stdin=subprocess.DEVNULL, **more):
        return subprocess.Popen([*before, CONSOLE, "--folder", self.folder, "--lang", "en", *arguments],
                                stdin=stdin, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                cwd=self.out, env=self.environment(**more))

    def run_console(self, *arguments, code=0, **more):
        process = self.start(*arguments, **more)
        out, err = process.communicate(timeout=100)
        self.assertEqual(process.returncode, code, f"{arguments}\n{out.decode()}\n{err.decode()}")
        return out, err.decode()

    def refused(self, *arguments, code=1, says=(), **more):
        """Refused with one line on standard error that says what and where."""
        out, err = self.run_console(*arguments, code=code, **more)
        self.assertEqual(out, b"", arguments)
        self.assertEqual(err.count("\n"), 1, f"{arguments}: {err}")
        for part in says:
            self.assertIn(part, err)

    def file(self, name):
        return os.path.join(self.out, name)

    def write(self, name, data):
        with open(self.file(name), "wb") as file:
            file.write(data)
        return self.file(name)

    def left_behind(self):
        return sorted(set(os.listdir(self.folder)) - {DEFINITION})

    def assert_clean(self, *allowed):
        """Neither settings nor a work file nor anything else appears beside the model definition."""
        self.assertEqual(self.left_behind(), sorted(allowed))
        self.assertEqual(os.listdir(self.temporary), [])


class Files(Bench):
    def test_every_example_passes_every_command(self):
        self.assertEqual(sequences(), sorted(SECONDS))
        for name in sequences():
            with self.subTest(name):
                # Whole, within the bounds of its waveforms, and these are found and readable.
                _, err = self.run_console("check", example(name))
                self.assertEqual(err, "")
                text, _ = self.run_console("text", example(name))
                self.run_console("text", example(name), "-o", self.file("text"))
                self.assertEqual(read(self.file("text")), text)
                self.assertTrue(text.startswith(b"[FILE]\r\n"))
                self.assertEqual(text.count(b"\r\nSTEP#"), 256)

                out, _ = self.run_console("compile", example(name), "-o", self.file("compiled"))
                size = os.path.getsize(self.file("compiled"))
                self.assertIn(f"{size} bytes", out.decode())

                out, _ = self.run_console("times", example(name))
                lines = out.decode().splitlines()
                self.assertAlmostEqual(float(lines[-1]), SECONDS[name] * 1000, 6)
                # Without jumps the total is the sum of the steps.
                if name == "ramp.dat":
                    self.assertEqual(float(lines[-1]), sum(float(line.split()[1]) for line in lines[:-1]))
                offline, _ = self.run_console("run", "--offline", example(name))
                self.assertEqual(offline, out)
        self.assert_clean("UseStep.txt")

    def test_saving_keeps_the_sequence(self):
        shutil.copytree(EXAMPLES, self.file("examples"))
        for name in sequences():
            with self.subTest(name):
                beside = self.file("examples/again.dat")
                self.run_console("save", self.file("examples/" + name), "-o", beside)
                self.assertEqual(read(beside), read(example(name)))
                text, _ = self.run_console("text", example(name))
                user, work = self.file(name), self.file("work.ini")
                self.run_console("save", example(name), "-o", user)
                self.run_console("save", "--work", user, "-o", work)
                self.run_console("save", work, "-o", self.file("again.dat"))
                self.assertEqual(read(self.file("again.dat")), read(user))
                for path in (user, work):
                    self.assertEqual(self.run_console("text", path)[0], text)
                # The waveforms are still found from the other folder.
                self.run_console("check", user)
        self.assert_clean()

    def test_a_waveform_becomes_its_transfer_block(self):
        self.run_console("wave", example("chirp.txt"), "-o", self.file("block"))
        block = read(self.file("block"))
        self.assertEqual(struct.unpack(">II", block[:8]), (0, 4096))
        values = [int(value) for value in re.split(r"[,\s]+", read(example("chirp.txt")).decode().strip())]
        self.assertEqual(list(struct.unpack(">4096h", block[8:])), values)
        for name, says in (("absent.txt", ["absent.txt"]), ("ramp.dat", ["ramp.dat"])):
            self.refused("wave", example(name), "-o", self.file("other"), says=says)
            self.assertFalse(os.path.exists(self.file("other")))

    def test_options_that_are_none(self):
        for arguments in (["--bogus"], ["check", "--bogus", example("ramp.dat")], ["frobnicate"], ["text"],
                          ["save", example("ramp.dat")], ["read", "11"], ["read", "x"],
                          ["run", example("ramp.dat"), "--number", "-1"], ["--lang", "fr", "devices"]):
            with self.subTest(arguments):
                # The language of setUp's options would come twice.
                process = subprocess.run([CONSOLE, *arguments], stdin=subprocess.DEVNULL, capture_output=True,
                                         env=self.environment(), check=False)
                self.assertEqual(process.returncode, 2)
                self.assertEqual(process.stdout, b"")
                self.assertEqual(process.stderr.count(b"\n"), 1, process.stderr)

    def test_files_that_cannot_be_read_or_written(self):
        nowhere = self.file("absent/out")
        for command in ("check", "text", "compile", "times", "run"):
            self.refused(command, self.file("absent.dat"), says=["absent.dat"])
            self.refused(command, self.out, says=[self.out])
        self.refused("save", self.file("absent.dat"), "-o", self.file("x"), says=["absent.dat"])
        self.refused("text", example("ramp.dat"), "-o", nowhere, says=[nowhere])
        self.refused("save", example("ramp.dat"), "-o", nowhere, says=[nowhere])
        self.refused("compile", example("ramp.dat"), "-o", nowhere, says=[nowhere])

    def test_check_names_step_and_column(self):
        whole = read(example("ramp.dat")).decode().replace("CP_ARBFILE#6=", "CP_ARBFILE#6=absent.wdb")
        cells, step = "SE_SETVAL#0#1=0,3,0,0,1,0,0,1000,0,0,0,0", "ST_SETVAL#1=5,0,0,0,0,0,1,0,1,0,1,0,1,0,0"
        for old, new, code, says in (
                (cells, cells.replace("0,3,0,0,1,0,0,1000,", "0,0,0,0,1,0,0,1E9,"), 1,
                 ["Error: Step 2, Ch1 Frequency: Input value Error!  Input value 1000000000  "
                  "Range of Input 0.000001-20000000"]),
                (cells, cells.replace("0,3,", "0,9,"), 1, ["Error: Step 2, Ch1 Waveform: The code 9 has"]),
                (cells, cells.replace("0,3,0,0,1,", "0,4,0,0,0,"), 1, ["Error: Step 2, Ch1 ARB No.: There is"]),
                (cells, cells.replace("0,3,0,0,1,", "0,4,0,0,7,"), 1, ["Error: Step 2, Ch1 ARB No.: The waveform file"]),
                (cells, cells.replace("0,3,0,0,1,", "0,4,0,0,8,"), 0, ["Warning: Step 2, Ch1 ARB No.: No file is"]),
                (cells, cells.replace("0,3,0,0,1,0,0,1000,0", "0,0,0,0,1,0,5,1000,4"), 1,
                 ["Error: Step 2, Ch1 Frequency: The code 5", "Warning: Step 2, Ch1 Frequency: The unit 4"]),
                # In range, but only the compiler knows the narrowest pulse.
                (cells + ",0,0,0,2,5,0,0,0,0,0,50,0", cells.replace("0,3,0,0,1,0,0,1000,", "0,1,0,0,1,0,0,9E6,") +
                 ",0,0,0,0,0,0,0,0,0,0,1,0", 1, ["Error: Step 2, Ch1 Duty: The sequence compiler refuses it: Func"]),
                (cells + ",0,0,0,2,5,", cells + ",0,0,0,0,11,", 1, ["Error: Step 2, Ch1 Offset: Input value Error!"]),
                (cells + ",0,0,0,2,5,", "SE_SETVAL#0#1=0,0,0,0,1,0,0,1000,0,0,10,0,0,0,0,0,8,", 1,
                 ["Error: Step 2, Ch1 Amplitude: Input value Error! Sum of"]),
                (step, step.replace("=5,", "=-5,"), 1, ["Error: Step 2, Step Time: The time -5 is negative."]),
                (step, "ST_SETVAL#1=20000,0,7,0,0,1,9,1,300,1,8,1,0,9,0", 1,
                 ["Warning: Step 2, Step Time: Input", "Warning: Step 2, Auto Hold: The code 7",
                  "Warning: Step 2, Event Branch: The step 9", "Error: Step 2, State Branch: The step 300",
                  "Warning: Step 2, Jump To: The step 8", "Warning: Step 2, Jump Count: Input",
                  "Warning: Step 2, Step Term: The code 9"]),
                (step, step + "\r\nBR_SETVAL#1=1,8,0,0,0", 0, ["Warning: Step 2, Branch Channel 2: The step 8"]),
                ("CM_START=1\r\nCM_TRIG=0", "CM_START=8\r\nCM_TRIG=3", 1,
                 ["Warning: Start Step: The step 8 does", "Error: Trig: Input value Error!  Input value 3"]),
                (whole[whole.index("ST_SETVAL"):whole.index("[FRMVIEW]")], "", 1, ["Error: One or more than one"])):
            with self.subTest(new):
                self.assertIn(old, whole)
                _, err = self.run_console("check", self.write("x.dat", whole.replace(old, new).encode()), code=code)
                lines = err.splitlines()
                self.assertEqual(len(lines), len(says), err)
                for line, beginning in zip(lines, says):
                    self.assertTrue(line.startswith(beginning), err)

    def shell(self, command):
        """Exit code and all output of a shell command in the application folder, in which $cli is the program."""
        done = subprocess.run(command, shell=True, cwd=self.folder, stdin=subprocess.DEVNULL, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=self.environment(LC_ALL="C", cli=CONSOLE + " --folder ."))
        return done.returncode, done.stdout.decode()

    def test_what_it_says_and_its_exit_code(self):
        shutil.copy(example("ramp.dat"), self.folder)
        shutil.copy(example("quick-tour.dat"), os.path.join(self.folder, "tour.dat"))
        program = CONSOLE + " --folder odd"
        for command, code, says in (
                ("$cli check ramp.dat", 0, "QM2210: steps 7, channels 1, arbitrary waveforms 0"),
                ("$cli --lang ja check ramp.dat", 0, "ステップ数 7"),
                ("$cli times ramp.dat", 0, "\n26000\n"),
                ("$cli check ramp.dat > /dev/full", 1, "output could not be written"),
                ("$cli --lang ja wave none.txt -o out", 1, "ファイルが存在しないか"),
                ("$cli save ramp.dat -o notes && ls", 0, "\nnotes\n"),
                ("$cli save ramp.dat -o /dev/full", 1, "/dev/full"),
                ("$cli save ramp.dat -o ''", 2, "the file name is empty"),
                ("sed -i 's/SERIALNO0=/&S7/' notes && $cli save notes -o n && grep S7 n", 0, "SS_SERIALNO0=S7"),
                ("sed -i 's/INTERFACE0=0/INTERFACE0=1/;s/ADDRESS0=0/ADDRESS0=2/' n; "
                 "CORLUNE_VI_INSTRUMENTS=QM2210:S7 $cli --virtual-instrument run n --yes", 1, "did not take the sequence over"),
                ("trap '' XFSZ; ulimit -f 99; $cli --virtual-instrument read 3", 1, "recvdata.bin"),
                ("trap '' XFSZ; ulimit -f 9; $cli compile ramp.dat", 1, "sendata.bin"),
                ("mkdir odd; sed '42,334s/CM_STAR=/&x,y,/;335,$s/SC_STARTSTP=1,1/SC_STARTSTP=1,3/' "
                 f"{DEFINITION} > odd/{DEFINITION}; {program} times tour.dat | head -1", 0, "3 "),
                (program + " --virtual-instrument read 3", 1, "SPEC QM2210: key CM_STAR"),
                ("$cli check absent.dat", 1, "The file could not be read. absent.dat"),
                ("sed s/MODEL=QM2210/MODEL=QM1/ ramp.dat > q && $cli check q", 1, "The model name QM1 is not"),
                (f"$cli check {DEFINITION}", 1, "The sequence data file error."),
                (CONSOLE + " --folder absent check ramp.dat", 1, "Initialization file doesn't exist"),
                ("$cli --virtual-instrument --visa none devices", 1, "VISA: switched off"),
                (f"sed 's/MYADRS=0/&,RESPONSE_DIALOG=1/' {DEFINITION} > odd/{DEFINITION}; "
                 f"{program} --simulated run ramp.dat --name 'q\"t'", 1, "Input value Error!"),
                (CONSOLE, 2, "a command is needed"),
                ("$cli check", 2, "file is required")):
            with self.subTest(command):
                found, said = self.shell(command)
                self.assertEqual(found, code, said)
                self.assertIn(says, said)
        # What a killed program left goes; a folder that holds anything else stays.
        for left in ("corlune-cli-killed", "corlune-cli-others/notes", "corlune-cli-in_use"):
            os.makedirs(os.path.join(self.temporary, left))
        self.write("temporary/corlune-cli-killed/sendata.bin", b"")
        in_use = os.open(os.path.join(self.temporary, "corlune-cli-in_use"), os.O_RDONLY)
        fcntl.flock(in_use, fcntl.LOCK_EX)
        self.shell("$cli times ramp.dat")
        os.close(in_use)
        self.assertEqual(sorted(os.listdir(self.temporary)), ["corlune-cli-in_use", "corlune-cli-others"])

    def test_compiling_touches_nobody_elses_files(self):
        # The editor may be downloading from the same folder.
        work, out = os.path.join(self.folder, "sendata.bin"), self.write("out.bin", b"of the last time")
        with open(work, "wb") as file:
            file.write(b"of another program")
        whole = read(example("ramp.dat"))
        first = b"SE_SETVAL#0#0=0,3,0,0,1,0,0,1000,0,0,0,0,0,0,0,0,0,"
        self.assertIn(first, whole)
        # Waveform 99 of step 1; an amplitude of 99 V in step 1.
        for refused in (first.replace(b"=0,3", b"=0,99"), first[:-2] + b"99,"):
            _, err = self.run_console("compile", self.write("x.dat", whole.replace(first, refused)), "-o", out, code=1)
            self.assertIn("The error was detected in the sequence data. Ch:1 Step:1", err)
            self.assertEqual(read(out), b"of the last time")
        self.run_console("compile", example("ramp.dat"), "-o", out)
        self.assertNotIn(b"[DATA]", read(out))
        self.assertEqual(read(work), b"of another program")
        self.run_console("compile", example("ramp.dat"))
        self.assertEqual(read(work), read(out))
        self.assert_clean("UseStep.txt", "sendata.bin")

    def test_devices(self):
        out, _ = self.run_console("--virtual-instrument", "devices",
                                  CORLUNE_VI_INSTRUMENTS="QM2220:A1,QM2210:B2")
        self.assertEqual(sorted(line.split() for line in out.decode().splitlines()),
                         [["QM2210", "B2", "USB0::0x3A1F::0x2210::B2::INSTR"],
                          ["QM2220", "A1", "USB0::0x3A1F::0x2220::A1::INSTR"]])
        # Asked at its address, and at one where nothing is.
        setup = b"SS_CNT=3\r\n" + b"".join(b"SS_INTERFACE%d=%d\r\nSS_ADDRESS%d=%d\r\n" % (i, kind, i, address)
                                          for i, (kind, address) in enumerate(((0, 0), (1, 2), (1, 9))))
        file = self.write("setup.dat", re.sub(rb"SS_CNT=.*(?=\[COMMON\])", setup, read(example("arb-burst.dat")),
                                              flags=re.S))
        for instruments, says, code, count in (
                ("QM2220:A1,QM2220:B2", "\nNI  2  TAVRIN,QM2220,A1,1.00\nNI  9  no answer\n", 0, 4),
                ("rubbish", "NI  9  NI-488.2 library refuses", 1, 2)):
            out, _ = self.run_console("--virtual-instrument", "devices", "--setup", file, code=code,
                                      CORLUNE_VI_INSTRUMENTS=instruments)
            self.assertIn(says, out.decode())
            self.assertEqual(out.count(b"\n"), count)
        # Not found, found but no library, found but not whole: each is said with the name that was tried.
        for library, reason in ((self.file("absent.so"), "No such file"),
                                (self.write("text.so", b"no library"), "invalid ELF header|file too short"),
                                (os.path.join(PROGRAMS, "libCmplSeq.so"), "viOpenDefaultRM")):
            _, err = self.run_console("--visa", library, "devices", code=1)
            self.assertIn(library, err)
            self.assertRegex(err, reason)
        _, err = self.run_console("--virtual-instrument", "devices", code=1, CORLUNE_VI_INSTRUMENTS="rubbish")
        self.assertIn("resource manager does not open", err)
        self.assert_clean()

    def test_runs_that_cannot_begin(self):
        virtual = ["--virtual-instrument", "run", example("arb-burst.dat")]
        whole = read(example("ramp.dat"))
        empty = whole[:whole.index(b"ST_SETVAL")] + whole[whole.index(b"[FRMVIEW]"):]
        two = {"CORLUNE_VI_INSTRUMENTS": "QM2220:A1,QM2220:A2"}
        cases = [
            (["--visa", "none", "run", example("ramp.dat")], {}, "No instrument was found.\nVISA: switched off"),
            (["--virtual-instrument", "run", self.write("empty.dat", empty)], {}, "One or more than one"),
            # The instrument is another model.
            (["--virtual-instrument", "run", example("ramp.dat")], {}, "No instrument was found."),
            (virtual, two, "A1"),
            (virtual + ["--serial", "A3"], two, "A3"),
            # No person at the terminal, no name, no --yes.
            (virtual, {}, "--name"),
            (virtual + ["--name", 'quo"te'], {}, "Input value Error!"),
            (virtual + ["--name", "a name of 21 letters."], {}, "--name"),
            (["--compiler", self.file("absent.so"), *virtual, "--yes"], {}, "absent.so"),
            (["--compiler", os.path.join(PROGRAMS, "libcorlune-virtual-instrument.so"), *virtual, "--yes"], {},
             "CompileSeqData"),
            (virtual + ["--yes"], {"CORLUNE_VI_FAULTS": "gone=1"}, "instrument 1"),
            (virtual + ["--yes"], {"CORLUNE_VI_FAULTS": "error:0xBFFF003E@REM"}, "instrument 1 occurred"),
            # Without a person as with --yes: the other answer would end the program at once.
            (virtual, {"CORLUNE_VI_FAULTS": "text:TAVRIN,QM2210,1,1@*IDN?"}, "model name 1.*\\n.*off-line"),
        ]
        for arguments, environment, says in cases:
            with self.subTest(arguments=arguments, environment=environment):
                _, err = self.run_console(*arguments, code=1, **environment)
                self.assertRegex(err, says)
        self.assertLessEqual(set(self.left_behind()), {"UseStep.txt"})
        self.assertEqual(os.listdir(self.temporary), [])

    def test_a_failed_read_writes_nothing(self):
        target = self.write("kept.dat", b"of the last time")
        for faults in ("error=1:0xBFFF003E@:TRACe:SEQ", "gone=0"):
            for path in (target, self.file("new.dat")):
                self.run_console("--virtual-instrument", "read", "3", "-o", path, code=1,
                                 CORLUNE_VI_FAULTS=faults)
            self.assertEqual(read(target), b"of the last time")
            self.assertFalse(os.path.exists(self.file("new.dat")))
        self.assert_clean()


class Runs(Bench):
    """In real time; the waits of a transfer are long, so everything happens at once."""

    def quick_sequence(self, seconds):
        """Steps of so many seconds each, two waveforms."""
        data = read(example("arb-burst.dat"))
        times = re.sub(rb"(ST_SETVAL#\d+=)[0-9.]+", rb"\g<1>" + str(seconds).encode(), data)
        # The third step jumps back nine times; once is enough.
        times = times.replace(b",1,2,1,9,", b",1,2,1,1,")
        self.assertNotEqual(times, data)
        for name in ("gaussian-burst.txt", "chirp.txt"):
            shutil.copy(example(name), self.out)
        return self.write("quick.dat", times)

    def switch_log_on(self):
        path = os.path.join(self.folder, DEFINITION)
        data = read(path).replace(b'MYADRS=0"', b'MYADRS=0,LOG_FILE=comm.log"')
        with open(path, "wb") as file:
            file.write(data)

    def log(self):
        lines = read(os.path.join(self.folder, "comm.log")).decode().splitlines()
        return [match[1] for line in lines if (match := re.search(r'GP_Send_Str "(.*)"', line))] + [lines[-1]]


class RunToItsEnd(Runs):
    def test_run(self):
        """Two instruments on USBTMC, one on GPIB, one on USB488."""
        self.switch_log_on()
        setup = b"SS_CNT=4\r\n" + b"".join(
            b"SS_INTERFACE%d=%d\r\nSS_ADDRESS%d=4\r\nSS_SERIALNO%d=%c\r\nSS_CHNCNT%d=2\r\n" % (i, kind, i, i, 65 + i, i)
            for i, kind in enumerate((0, 0, 1, 3)))
        file = self.write("quick.dat", re.sub(rb"SS_CNT=.*(?=\[COMMON\])", setup, read(self.quick_sequence(0.4)),
                                              flags=re.S))
        # Started so that it survives its terminal.
        process = self.start("run", file, "--virtual-instrument", "--yes", "--name", "E2E", "--number", "3",
                             "--serial", "A", before=["nohup"],
                             CORLUNE_VI_INSTRUMENTS="QM2220:A,QM2220:B,QM2220:C,QM2220:D")
        text = process.stdout.readline().decode()
        process.send_signal(signal.SIGHUP)
        out, err = process.communicate(timeout=100)
        self.assertEqual(process.returncode, 0, err)
        text += out.decode()
        started = re.findall(r'(\S+) <  GP_Send_Str ":TRIG1:SEL:EXEC STAR"',
                             read(os.path.join(self.folder, "comm.log")).decode())
        self.assertEqual(self.log().count(":TRAC:SEQ:REC 3"), 1)
        name = "USB0::0X3A1F::0X2220::%s::INSTR"
        self.assertEqual(started, [name % "A", name % "B", "4", "4"])
        # The question that --yes answers.
        self.assertEqual(err.decode(), "Output switch truns to 'on' and sequence will start. Is it OK?\n")
        for line in ("Transmitting the arbitrary wave data.....ARB 1", "Transmitting the sequence data.",
                     "The sequence execution was ended."):
            self.assertIn(line, text)
        steps = [int(number) for number in re.findall(r"  Step[^\d\n]*(\d+)$", text, re.M)]
        # A machine that is held up may miss some of the steps, but never sees them in another order.
        way = iter([1, 2, 3, 2, 3, 4, 5])
        self.assertTrue(steps and all(step in way for step in steps), text)
        self.assert_clean("UseStep.txt", "comm.log")


class RunIsStopped(Runs):
    # In the foreground of a terminal, in a shell that says how it was left.
    TERMINAL = ["setsid", "-c", "sh", "-c", 'trap : INT; "$@"; code=$?; stty -a >&2; exit $code', "sh"]

    def interrupt(self, pattern, press):
        """Runs until a line of the output matches; there press(terminal, output); what was said, and what was sent."""
        self.switch_log_on()
        master, terminal = pty.openpty()
        process = self.start("run", self.quick_sequence(5), "--virtual-instrument", "--yes", "--name", "E2E",
                             before=self.TERMINAL, stdin=terminal)
        os.close(terminal)
        guard = threading.Timer(90, process.kill)
        guard.start()
        said = ""
        while not re.search(pattern, said, re.M):
            line = process.stdout.readline().decode()
            if not line:
                self.fail(said + process.stderr.read().decode())
            said += line
        self.assertFalse(termios.tcgetattr(master)[3] & (termios.ICANON | termios.ECHO))
        press(master, process.stdout)
        said += process.communicate(timeout=90)[1].decode()
        guard.cancel()
        self.assertEqual(process.returncode, 1, said)
        self.assert_clean("UseStep.txt", "comm.log")
        return said, self.log()

    def test_interrupt(self):
        # Hold, go on, Control and C; as in "run ... | tee log" the reader ends as well.
        def press(terminal, output):
            os.write(terminal, b"\n")  # nothing is held yet
            os.write(terminal, b"h")
            while not (line := output.readline()).endswith(b"Hold\n") and line:
                pass
            os.write(terminal, b"\n")
            wait_until(lambda: any(line.endswith("RES") for line in self.log()))
            os.write(terminal, b"\x03")
            output.close()
        said, sent = self.interrupt(r"  Step[^\d]*\d$", press)
        self.assertEqual([line[-4:] for line in sent if "EXEC" in line], ["STAR", "HOLD", " RES", "STOP"], said)
        self.assertNotIn("as soon as the block", said)
        # The stop is the last command; the status behind it is read, and the connection is closed.
        self.assertEqual(sent[-3:], [":TRIG1:SEL:EXEC STOP", ":STAT:OPER:CH1:COND?", "ALL < GP_END"])
        self.assertRegex(said, r" icanon (.|\n)* echo ", "the terminal is given back as it was")


class DownloadIsStopped(RunIsStopped):
    """The terminal goes away."""
    TERMINAL = ["setsid", "-c"]

    def test_interrupt(self):
        _, sent = self.interrupt("ARB 1", lambda terminal, _: os.close(terminal))
        self.assertEqual(sent[-2:], [":SYST:ERR?", "ALL < GP_END"])


class RunBreaksOff(Runs):
    FAULTS = "text=3:-77@CST?;timeout=1@EXEC STOP"

    def test_run(self):
        self.switch_log_on()
        _, err = self.run_console("run", self.quick_sequence(1), "--virtual-instrument", "--yes", code=1,
                                  CORLUNE_VI_FAULTS=self.FAULTS)
        self.assertRegex(err, "did not end as it should.*\n.*stop once more and has taken it")
        self.assertEqual(self.log().count(":TRIG1:SEL:EXEC STOP"), 2)


class RunUnanswered(Runs):
    """Nobody is there to say that the outputs may be switched on."""
    def test_run(self):
        self.switch_log_on()
        _, err = self.run_console("run", self.quick_sequence(0.1), "--virtual-instrument", "--name", "E2E", code=1)
        self.assertIn("Is it OK?", err)
        self.assertFalse([line for line in self.log() if "EXEC" in line or " ON" in line])


class ReadIsInterrupted(Runs):
    def test_read(self):
        self.switch_log_on()
        process = self.start("--virtual-instrument", "read", "2")
        while b":TRACe:SEQ" not in (read(log) if os.path.exists(log := os.path.join(self.folder, "comm.log")) else b""):
            self.assertIsNone(process.poll())
            time.sleep(0.05)
        process.send_signal(signal.SIGTERM)
        process.communicate(timeout=60)
        self.assertEqual(process.returncode, 1)
        self.assert_clean("comm.log")


class ReadIntoAFile(Runs):
    def test_read(self):
        sent, _ = self.run_console("text", example("quick-tour.dat"))
        # What an instrument that holds the example would answer.
        fault = "text:" + sent.decode() + "@:TRACe:SEQ"
        self.run_console("--virtual-instrument", "read", "2", "-o", self.file("received.dat"),
                         CORLUNE_VI_FAULTS=fault)
        received, _ = self.run_console("text", self.file("received.dat"))
        self.assertEqual(received, sent)
        self.assert_clean()
        # Nothing but the text goes to the output; the connection is closed.
        self.switch_log_on()
        received, _ = self.run_console("--virtual-instrument", "read", "2", CORLUNE_VI_FAULTS=fault)
        self.assertEqual(received, sent)
        self.assertEqual([line for line in self.log() if "SEQ" in line or "END" in line],
                         [":TRACe:SEQuence? 2", "ALL < GP_END"])


def run_at_once(cases):
    """Each case in a thread of its own: they only wait."""
    results = [unittest.TestResult() for _ in cases]
    suites = [unittest.defaultTestLoader.loadTestsFromTestCase(case) for case in cases]
    threads = [threading.Thread(target=suite.run, args=(result,)) for suite, result in zip(suites, results)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for result in results:
        for test, trace in result.failures + result.errors:
            print(f"{test}\n{trace}", file=sys.stderr)
    ran = sum(result.testsRun for result in results)
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    if used.ru_utime + used.ru_stime > BUSY_SECONDS:
        print("a wait keeps the processor busy", file=sys.stderr)
        return False
    print(f"{ran} runs")
    return ran == len(cases) and all(result.wasSuccessful() for result in results)


def main():
    if sys.argv[3] == "files":
        suite = unittest.defaultTestLoader.loadTestsFromTestCase(Files)
        return unittest.TextTestRunner().run(suite).wasSuccessful()
    return run_at_once([RunToItsEnd, RunIsStopped, DownloadIsStopped, RunBreaksOff, RunUnanswered, ReadIsInterrupted,
                        ReadIntoAFile])


if __name__ == "__main__":
    sys.exit(0 if main() else 1)
