"""Drives the virtual instrument's VISA library with PyVISA, a VISA client that knows nothing of it.

Usage: pyvisa_check.py LIBRARY
"""

import os
import sys

os.environ["CORLUNE_VI_INSTRUMENTS"] = "QM2220:QM000001,QM2210:QM000002,QM2220:QM000003"
os.environ["CORLUNE_VI_FAULTS"] = "qm000003/gone=4;QM000002/long@*IDN"

import pyvisa  # noqa: E402
from pyvisa.constants import ResourceAttribute, StatusCode  # noqa: E402

FIRST = "USB0::0x3A1F::0x2220::QM000001::INSTR"
SECOND = "USB0::0x3A1F::0x2210::QM000002::INSTR"
THIRD = "USB0::0x3A1F::0x2220::QM000003::INSTR"


def expect(found, wanted, what):
    if found != wanted:
        sys.exit(f"{what}: {found!r}, expected {wanted!r}")


def expect_error(code, what, action):
    try:
        result = action()
    except pyvisa.errors.VisaIOError as error:
        expect(error.error_code, code, what)
    else:
        sys.exit(f"{what}: {result!r}, expected an error")


def check_search(manager):
    expect(manager.list_resources(), (FIRST, SECOND, THIRD), "search")
    expect(manager.list_resources("usb?*::0x2210::?*instr"), (SECOND,), "search by product, lower case")
    expect(manager.list_resources("USB?*::QM00000(1|3)::INSTR"), (FIRST, THIRD), "search by alternatives")
    expect(manager.list_resources("GPIB?*INSTR"), (), "search without a match")
    expect_error(StatusCode.error_resource_not_found, "unknown serial",
                 lambda: manager.open_resource("USB0::0x3A1F::0x2220::QM999999::INSTR"))
    expect(manager.resource_info(FIRST).resource_class, "INSTR", "resource class")


def check_attributes(instrument):
    expect(instrument.get_visa_attribute(ResourceAttribute.resource_name), FIRST, "resource name")
    expect(instrument.manufacturer_id, 0x3A1F, "manufacturer")
    expect(instrument.model_code, 0x2220, "product")
    expect(instrument.serial_number, "QM000001", "serial number")
    expect(instrument.model_name, "QM2220", "model name")
    expect(instrument.is_4882_compliant, True, "IEEE 488.2")
    instrument.timeout = 300
    expect(instrument.timeout, 300, "time-out")
    expect(instrument.get_visa_attribute(ResourceAttribute.termchar_enabled), False, "terminator at first")
    instrument.read_termination = "\n"
    instrument.write_termination = "\n"
    expect(instrument.get_visa_attribute(ResourceAttribute.termchar), 10, "terminator")


def check_messages(instrument):
    expect(instrument.query("*IDN?").split(",")[:3], ["TAVRIN", "QM2220", "QM000001"], "identification")
    expect(instrument.query(":OUTP1 ON;:OUTP2 OFF;:OUTP1?;:OUTP2?"), "1;0", "outputs")
    expect(instrument.query_ascii_values(":SOUR1:SEQ:CSTep?", "d"), [-1], "step")
    expect(instrument.query(":SYST:ERR?"), '0,"No error"', "no error")
    instrument.write(":NONSENSE 1")
    expect(instrument.query(":SYST:ERR?"), '-113,"Undefined header"', "undefined header")
    # A read with nothing asked for times out and is a query error, seen in the status byte.
    instrument.write("*CLS;*ESE 60")
    expect(instrument.read_stb(), 0, "status byte")
    expect_error(StatusCode.error_timeout, "read without a query", instrument.read)
    expect(instrument.read_stb() & 0x20, 0x20, "event summary")
    expect(instrument.query("*ESR?"), "4", "query error")
    # A device clear drops a reply that nobody read.
    instrument.write("*IDN?")
    expect(instrument.read_stb() & 0x10, 0x10, "message available")
    instrument.clear()
    expect(instrument.read_stb() & 0x10, 0, "message available after a clear")
    # A reply raises a service request, which arrives as an event.
    request, queue = pyvisa.constants.EventType.service_request, pyvisa.constants.EventMechanism.queue
    instrument.write("*CLS;*SRE 16")
    instrument.enable_event(request, queue)
    expect(instrument.wait_on_event(request, 20, capture_timeout=True).timed_out, True, "no request yet")
    instrument.write("*IDN?")
    expect(instrument.wait_on_event(request, 500).event.event_type, request, "service request")
    expect(instrument.read_stb(), 0x50, "status byte of the request")
    expect(instrument.read_stb(), 0x10, "status byte after the poll")
    instrument.read()


def check_blocks(instrument):
    points = [(31 * i) % 65536 - 32768 for i in range(524288)]
    block = (0).to_bytes(4, "big") + len(points).to_bytes(4, "big")
    block += b"".join(point.to_bytes(2, "big", signed=True) for point in points)
    instrument.write_binary_values(':TRAC:DATA 5,"Saw",', block, "B")
    expect(instrument.query(":TRAC:INF? 5"), '"Saw",1,524288', "waveform information")
    instrument.read_termination = None
    back = instrument.query_binary_values(":TRAC:DATA? 5", "B", container=bytes)
    expect(back == block, True, "waveform read back")
    instrument.read_termination = "\n"


def main():
    manager = pyvisa.ResourceManager(sys.argv[1])
    check_search(manager)
    instrument = manager.open_resource(FIRST.replace("3A1F", "3a1f").replace("QM", "qm"))
    check_attributes(instrument)
    check_messages(instrument)
    check_blocks(instrument)

    # Faults from the environment.
    second = manager.open_resource(SECOND, read_termination="\n", timeout=200)
    expect(len(second.query("*IDN?")), 300, "long reply")
    second.write(":OUTP2 ON")
    expect(second.query(":SYST:ERR?"), '-114,"Header suffix out of range"', "one channel only")
    third = manager.open_resource(THIRD, read_termination="\n", timeout=200)
    third.query("*IDN?")
    third.query("*IDN?")
    expect_error(StatusCode.error_connection_lost, "unplugged", lambda: third.query("*IDN?"))
    expect(manager.list_resources(), (FIRST, SECOND), "search after unplugging")

    for session in (instrument, second, third):
        session.close()
    manager.close()
    print("PyVISA", pyvisa.__version__, "works with", sys.argv[1])


main()
