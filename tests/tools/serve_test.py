#!/usr/bin/env python3
"""Checks palsim serve and its client in Python: serve_test.py PROJECT_ROOT PALSIM

What a request is answered stands in docs/test-bench.md; what a device does is the scenarios' affair.
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import unittest.mock

ROOT, PALSIM = pathlib.Path(sys.argv.pop(1)).resolve(), sys.argv.pop(1)
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "sdk/python"))
import palsim  # noqa: E402

GRI = r"HKLM\SOFTWARE\Dravonel\PAL\TethGRI"


def serve(text, *arguments):
    """What palsim answers to the bytes of its whole input."""
    run = subprocess.run([PALSIM, "serve", "--stdio", *arguments], input=text, capture_output=True, timeout=60)
    assert (run.returncode, run.stderr) == (0, b""), run
    return [json.loads(line.decode()) for line in run.stdout.splitlines()]


def request(method="get", params=(GRI,), **others):
    return {"jsonrpc": "2.0", "id": 1, "method": method, "params": params, **others}


class Protocol(unittest.TestCase):
    def test_lines_that_are_no_requests(self):
        good = json.dumps(request())
        for text, code, says in [
            (b"nonsense", -32700, "syntax error"), (b"", -32700, "unexpected end"), (b'"\xff"', -32700, "ill-formed"),
            (good.replace("}", ""), -32700, "unexpected end"), (good + good, -32700, "expected end of input"),
            (b"1e999", -32700, "number overflow"),
            (b"1", -32600, "is an object"), (b"[]", -32600, "1 to 1000"), (b"{}", -32600, "jsonrpc"),
            (json.dumps([1] * 1001), -32600, "1 to 1000"),
            (json.dumps(request(jsonrpc="1.0")), -32600, "jsonrpc"), (json.dumps(request(method=1)), -32600, "method"),
            (json.dumps(request(id=[1])), -32600, "an id"), (json.dumps(request(params="x")), -32600, "params"),
            (b"[" * 40 + b"]" * 40, -32600, "nested deeper"), (b"[" * 500000, -32600, "nested deeper"),
            (b'{"a":' * 200000, -32600, "nested deeper"), (b'"' + b"x" * 3000000 + b'"', -32600, "1048576 bytes"),
        ]:
            text = text.encode() if isinstance(text, str) else text
            with self.subTest(text=text[:60]):
                bad, after = serve(text + b"\n" + good.encode())  # the next line is answered, also without its end
                self.assertEqual(bad["error"]["code"], code)
                self.assertIn(says, bad["error"]["message"])
                self.assertEqual(after, {"jsonrpc": "2.0", "id": 1, "result": 5})

    def test_ids_notifications_and_batches(self):
        ids = [0, -1, 1.5, "a\u00e4\n", None]
        notification = {key: value for key, value in request("set", [GRI, 3]).items() if key != "id"}
        lines = [request(id=each) for each in ids] + [notification, {**notification, "method": "dance"}, [notification]]
        lines += [[request(), 5, notification, request("dance", id=2)], request()]
        *answers, batch, last = serve("\n".join(map(json.dumps, lines)).encode())
        self.assertEqual([answer["id"] for answer in answers], ids)
        self.assertEqual([(each["id"], each.get("result"), each.get("error", {}).get("code")) for each in batch],
                         [(1, 3, None), (None, None, -32600), (2, None, -32601)])
        self.assertEqual(last["result"], 3)

    def test_requests_that_are_refused_change_nothing(self):
        start = request("start", ["p"])
        for method, params, code, says in [
            ("journl", [], -32601, "did you mean journal?"), ("call", [], -32602, "'process' is missing"),
            ("get", [1], -32602, "value has to be a text"), ("get", ["a\0b"], -32602, "without NUL"),
            ("get", ["nowhere"], -32602, "is no registry value"), ("get", [GRI, 1], -32602, "at most 1"),
            ("get", {"value": GRI, "x": 1}, -32602, "no parameter 'x'"), ("initialize", [2], -32602, "is 1"),
            ("call", ["p", "PALBEEPGoodRead"], -32602, "did you mean"), ("call", ["p", "PalX"], -32602, "no export"),
            ("call", ["p", "PALBEEPGoodReadEx", [1, 2]], -32602, "takes 1 argument"),
            ("call", ["p", "PALBEEPGoodReadEx", ["x"]], -32602, "no 32-bit number"),
            ("call", ["p", "PALBEEPGoodReadEx", [1.5]], -32602, "an argument has to be"),
            ("call", ["p", "PALBEEPGoodReadEx", 1], -32602, "arguments has to be an array"),
            ("set", [GRI, 2 ** 40], -32602, "no 32-bit"), ("set", [GRI, [256]], -32602, "array of bytes"),
            ("set", ["volume", "loud"], -32602, "no 32-bit"), ("advance", [-1], -32602, "whole number"),
            ("advance", [2 ** 32], -32602, "whole number"), ("expect", ["dance"], -32602, "expect:1: 'dance' is no"),
            ("expect", ["no restart\nwait 5 ms"], -32602, "one line"), ("play", [[1]], -32602, "array of texts"),
            ("play", [["wait 5 ms", "dance"]], -32602, "play:2: 'dance'"), ("start", [""], -32602, "no name"),
            ("journal", {"effect": "light"}, -32602, "no effect"),
            ("set", ["HKLM" + r"\a" * 20, 1], -32000, "no key can have"),
            ("play", ["\n".join(f"p{place} starts" for place in range(40))], -32000, "32 processes already"),
            ("call", ["q", "PALLEDInit"], -32000, "no process q runs"), ("start", ["p"], -32000, "started already"),
            ("await", ["p"], -32000, "no call p"), ("snapshot", [], -32000, "a process runs"),
            ("restore", [], -32000, "a process runs"), ("save", ["/tmp/x"], -32000, "a process runs"),
        ]:
            with self.subTest(method=method, params=params):
                now = request("get", ["volume"])
                clock = request("advance", [0])
                _, before, bad, after, time = serve(
                    "\n".join(map(json.dumps, [start, now, request(method, params), now, clock])).encode())
                self.assertEqual(bad["error"]["code"], code, bad)
                self.assertIn(says, bad["error"]["message"])
                self.assertEqual((after, time["result"]), (before, {"time_ms": 0}))

    def test_the_exchange_of_the_document(self):
        lines = (ROOT / "docs/test-bench.md").read_text().splitlines()
        sent = [line[2:] for line in lines if line.startswith('> {"')]
        answers = [json.loads(line[2:]) for line in lines if line.startswith('< {"')]
        self.assertGreater(len(sent), 5)
        self.assertEqual(serve("\n".join(sent).encode()), answers)

    def test_the_client_of_the_document(self):
        example = (ROOT / "docs/test-bench.md").read_text().split("```")[1].removeprefix("python\n")
        self.assertIn("device.expect", example)
        with unittest.mock.patch.dict(os.environ, PALSIM=PALSIM):
            exec(example, {})

    def test_an_output_that_is_closed_ends_it_quietly(self):
        with subprocess.Popen([PALSIM, "serve", "--stdio"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, restore_signals=False) as server:
            server.stdout.close()
            server.stdin.write((json.dumps(request()) + "\n").encode())
            server.stdin.flush()  # and stays open
            self.assertEqual(server.wait(60), 1)
            self.assertEqual(server.stderr.read(), b"")


class Client(unittest.TestCase):
    def device(self, sample="rm21", **options):
        device = palsim.Device(sample, palsim=PALSIM, **options)
        self.addCleanup(device.close)
        return device

    def test_values_and_out_parameters(self):
        device = self.device()
        for value in (5, "a \"text\" # \u00e4", bytes([0, 10, 255]), b""):
            device.set(GRI, value)
            self.assertEqual(device.get(GRI), value)
        device.set("volume", 0x80008000)
        self.assertEqual(device.get("volume"), 0x80008000)
        self.assertEqual(device.journal()[-1], palsim.Entry(0, 0, 0, "audio", 0, "volume 0x80008000"))
        process = device.start("p")
        name = process.call("PALKEYGetButtonName", "PAL_BUTTON_MIDDLE")
        self.assertEqual((name.result, len(name.out["name"])), ("S_OK", name.out["length"]))
        self.assertEqual(process.call("PALKEYGetButtonName", 5, None, None).failed, True)
        self.assertIn("past the room", process.call("PALKEYGetButtonName", 5, 1, "out").out["name"])
        unknown = process.call("PALBEEPSetGRI", 9, True)
        self.assertEqual((unknown.code, unknown.result, unknown.failed), (0x80004005, "E_FAIL", True))

    def test_snapshots_restarts_and_the_end(self):
        device = self.device()
        device.set(GRI, 1)
        device.snapshot("one")
        device.set(GRI, 2)
        device.advance(50)
        device.restore("one")
        self.assertEqual((device.get(GRI), device.advance(0)), (1, 50))
        with self.assertRaisesRegex(palsim.RequestError, "no snapshot 'two'"):
            device.restore("two")
        process = device.start("p")
        self.assertEqual(process.call("PALBOOT_BootTerminal", "PAL_BOOT_WARM").cut, "restart, warm")
        device.expect("restart warm")
        device.start("p").begin("PALBEEPGoodReadEx", 1)
        device.reset()
        self.assertEqual((device.get(GRI), device.advance(0)), (5, 0))
        self.assertEqual([line.text for line in device.journal()], ["dvlkbd.exe started"])
        device.play("fail call 9 of Sleep")
        with self.assertRaisesRegex(palsim.ExpectationFailed, "not reached: Sleep:9"):
            device.finish()
        device.finish()
        with self.assertRaisesRegex(palsim.ExpectationFailed, "^expected the volume to be 0x00000005; there was"):
            device.expect("volume 5")
        with self.assertRaisesRegex(palsim.ExpectationFailed, "no audio line"):
            device.expect("audio " + "*a" * 200000)  # neither depth nor time without end
        with self.assertRaisesRegex(palsim.RequestError, "^play:1: .play play"):
            device.play("play " * 100000)

    def test_saves_where_nothing_is_and_leaves_its_folder_alone(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name) / "saved"
            device = self.device()
            device.set(GRI, 4)
            device.save(folder)
            with self.assertRaisesRegex(palsim.RequestError, "is there already"):
                device.save(folder)
            with self.assertRaisesRegex(palsim.RequestError, "cannot create directory"):
                device.save(folder / "no" / "where")
            files = {file: file.read_bytes() for file in folder.rglob("*") if file.is_file()}
            self.assertIn(b'TethGRI"=dword:00000004', files[folder / "runs/000001.log"])
            again = self.device(str(folder))
            self.assertEqual((again.get(GRI), again.info["device"]), (4, "rm21"))
            again.set(GRI, 1)
            again.close()
            self.assertEqual(files, {file: file.read_bytes() for file in folder.rglob("*") if file.is_file()})

    def test_what_is_no_utf8_stands_as_u_fffd(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            text = (ROOT / "devices/rm21/device.toml").read_text()
            self.assertIn('0x00D5 = "RM21"', text)
            (folder / "device.toml").write_text(text.replace('0x00D5 = "RM21"', '0x00D5 = { hex = "52 FF C3 00" }'))
            device = self.device(name)
            model = device.start("p").call("PALSysinfo_GetModelExA", 64)
            self.assertEqual(model.out, {"buffer": "R\ufffd\ufffd", "length": 4})

    def test_a_server_that_is_gone_is_said_with_its_words(self):
        with self.assertRaisesRegex(palsim.ServerError, r"exit status 2\): palsim: there is no sample device 'rm99'"):
            palsim.Device("rm99", palsim=PALSIM)
        with self.assertRaisesRegex(palsim.ServerError, "cannot be started"):
            palsim.Device(palsim="/nowhere/palsim")
        with tempfile.TemporaryDirectory() as name:
            stub = pathlib.Path(name) / "palsim"
            for does, says in [("exec sleep 60", r"has not answered within 0.2 s at 'initialize' \(exit status -9\)"),
                               ("read line; echo oh no >&2; exit 3", r"has ended at 'initialize' .*3\): oh no"),
                               ("read line; printf '{'", "has ended"), ("read line; echo what", "is no answer")]:
                stub.write_text(f"#!/bin/sh\n{does}\n")
                stub.chmod(0o755)
                with self.assertRaisesRegex(palsim.ServerError, says):
                    palsim.Device(palsim=str(stub), timeout=0.2 if "sleep" in does else 60)
        device = self.device()
        device.close()
        with self.assertRaisesRegex(palsim.ServerError, "is closed"):
            device.get(GRI)


unittest.main()
