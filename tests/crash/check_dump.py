#!/usr/bin/env python3
"""Crashes a program and checks its archive and minidump by the published layouts: check_dump.py WINE-RUN PROGRAM."""
import struct
import subprocess
import sys
import tempfile
import zipfile
from pathlib import Path

ACCESS_VIOLATION = 0xC0000005
THREADS, MODULES, MEMORY, EXCEPTION, SYSTEM = 3, 4, 5, 6, 7
AMD64 = 9
RIP_IN_CONTEXT = 0xF8


def streams_of(dump):
    signature, version, count, directory = struct.unpack_from("<4sIII", dump)
    assert signature == b"MDMP" and version & 0xFFFF == 0xA793, "no minidump"
    streams = {}
    for i in range(count):
        kind, size, at = struct.unpack_from("<III", dump, directory + 12 * i)
        assert at + size <= len(dump), f"stream {kind} leaves the file"
        streams[kind] = at
    return streams


def threads_of(dump, at):
    (count,) = struct.unpack_from("<I", dump, at)
    for i in range(count):
        thread, _, _, _, _, _, size, rva, context_size, context = struct.unpack_from("<IIIIQQIIII", dump, at + 4 + 48 * i)
        assert rva + size <= len(dump) and context + context_size <= len(dump), "a thread leaves the file"
        yield thread


def modules_of(dump, at):
    (count,) = struct.unpack_from("<I", dump, at)
    for i in range(count):
        base, size, _, _, name = struct.unpack_from("<QIIII", dump, at + 4 + 108 * i)
        (length,) = struct.unpack_from("<I", dump, name)
        yield base, size, dump[name + 4 : name + 4 + length].decode("utf-16-le")


def check(dump):
    streams = streams_of(dump)
    assert struct.unpack_from("<H", dump, streams[SYSTEM])[0] == AMD64, "another processor"
    thread, _, code, _, _, address, count = struct.unpack_from("<IIIIQQI", dump, streams[EXCEPTION])
    context_size, context = struct.unpack_from("<II", dump, streams[EXCEPTION] + 160)
    assert code == ACCESS_VIOLATION and count == 2, f"exception {code:#x} with {count} parameters"
    assert struct.unpack_from("<QQ", dump, streams[EXCEPTION] + 40) == (0, 0), "not a read at 0"
    assert context + context_size <= len(dump)
    assert struct.unpack_from("<Q", dump, context + RIP_IN_CONTEXT)[0] == address, "another instruction pointer"
    assert thread in threads_of(dump, streams[THREADS]), "the faulting thread is missing"
    place = [name for base, size, name in modules_of(dump, streams[MODULES]) if base <= address < base + size]
    assert len(place) == 1 and place[0].endswith("vxut_crash_child.exe"), f"the fault is in {place}"
    (count,) = struct.unpack_from("<I", dump, streams[MEMORY])
    for i in range(count):
        _, size, rva = struct.unpack_from("<QII", dump, streams[MEMORY] + 4 + 16 * i)
        assert rva + size <= len(dump), "memory leaves the file"
    assert count > 0, "no memory"


with tempfile.TemporaryDirectory() as folder:
    windows = "Z:" + folder.replace("/", "\\")
    result = subprocess.run([sys.argv[1], sys.argv[2], windows, "read"], stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL, timeout=120)
    assert result.returncode == ACCESS_VIOLATION & 0xFF, f"exit status {result.returncode}"
    archive = zipfile.ZipFile(Path(folder) / "Velmora" / "Velmora.dmp.zip")
    assert archive.testzip() is None, "bad checksum"
    assert archive.comment == b"Velmora Crash Information File"
    assert [entry.filename for entry in archive.infolist()] == ["velmora64.dmp", "trcwin.log"]
    check(archive.read("velmora64.dmp"))
print("the dump is as it should be")
