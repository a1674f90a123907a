"""Tests on a simulated handheld: a client of `palsim serve`.

    with palsim.Device("rm21") as device:
        scanner = device.start("scanner")
        assert scanner.call("PALBEEPGoodReadEx", 1).result == "S_OK"
        device.expect("vibration preset 3 for 250 ms")

The program palsim is found by the argument `palsim`, in $PALSIM, or on the path.
"""
import dataclasses
import json
import os
import queue
import shutil
import subprocess
import tempfile
import threading
from types import TracebackType
from typing import IO, Any, Dict, List, Optional, Type, Union

PROTOCOL = 1

Argument = Union[int, str, bool, None]
Value = Union[int, str, bytes]


class Error(Exception):
    """Something that palsim cannot do, or palsim itself is gone."""


class RequestError(Error):
    """A request that palsim has refused; `code` is that of JSON-RPC."""

    def __init__(self, code: int, message: str) -> None:
        super().__init__(message)
        self.code = code


class ServerError(Error):
    """palsim cannot be started, has ended, or has not answered in time."""


class ExpectationFailed(AssertionError):
    """The device is not as the test expects it, or a program has misused the platform."""


@dataclasses.dataclass(frozen=True)
class Outcome:
    """What a call has given."""

    code: Optional[int]  # None: it has not returned
    result: str  # "S_OK", "PAL_E_WIN32(31)"; empty where the code has no name
    failed: bool  # also where it has not returned
    cut: Optional[str]  # why it has not returned: "killed", "restart, warm"
    out: Dict[str, Value]  # the out-parameters by their names
    names: Dict[str, str]  # the enumerators that they hold


@dataclasses.dataclass(frozen=True)
class Entry:
    """A line of the journal."""

    time_ms: int
    process: int  # 0: the device itself
    thread: int
    effect: str
    category: int  # of a trace line, else 0
    text: str


class Call:
    """A call in a thread of its own."""

    def __init__(self, device: "Device", name: str) -> None:
        self._device = device
        self.name = name

    def wait(self) -> Outcome:
        """Lets the device run until the call has returned."""
        return _outcome(self._device.request("await", call=self.name))


class Process:
    """A process on the device, with the library loaded."""

    def __init__(self, device: "Device", name: str) -> None:
        self._device = device
        self._begun = 0
        self.name = name
        self.id: int = device.request("start", process=name)["process"]

    def call(self, export: str, *arguments: Argument) -> Outcome:
        """Calls an export. Arguments that it only gives may be left out."""
        return _outcome(self._device.request("call", process=self.name, export=export, arguments=arguments))

    def begin(self, export: str, *arguments: Argument) -> Call:
        """Calls an export in a thread of its own."""
        self._begun += 1
        name = f"{self.name} {self.id}.{self._begun}"
        self._device.request("begin", **{"process": self.name, "export": export, "arguments": arguments, "as": name})
        return Call(self._device, name)

    def end(self) -> None:
        """Ends it as its owner would."""
        self._device.request("end", process=self.name)

    def kill(self) -> None:
        """Ends it where it is, whatever it holds."""
        self._device.request("kill", process=self.name)


class Device:
    """A simulated device, by the name of a sample or by its folder, which stays as it is."""

    def __init__(self, device: str = "rm21", *, palsim: Optional[str] = None, timeout: float = 30.0) -> None:
        """`timeout` is how long palsim may take for an answer, in seconds."""
        self._timeout = timeout
        self._requests = 0
        self._stderr = tempfile.TemporaryFile()
        program = palsim or os.environ.get("PALSIM") or shutil.which("palsim")
        try:
            if program is None:
                raise ServerError("there is no palsim: put it on the path, or its file into $PALSIM")
            self._server = subprocess.Popen([program, "serve", "--stdio", "--device", device], stdin=subprocess.PIPE,
                                            stdout=subprocess.PIPE, stderr=self._stderr)
        except (OSError, ServerError) as error:
            self._stderr.close()
            raise ServerError(f"palsim cannot be started: {error}") from None
        assert self._server.stdin is not None and self._server.stdout is not None
        self._stdin, self._stdout = self._server.stdin, self._server.stdout
        self._lines: "queue.Queue[bytes]" = queue.Queue()
        self._reader = threading.Thread(target=_read_lines, args=(self._stdout, self._lines), daemon=True)
        self._reader.start()
        try:
            self.info: Dict[str, Any] = self.request("initialize", protocol=PROTOCOL)
        except BaseException:
            self.close()
            raise

    def __enter__(self) -> "Device":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        try:
            if kind is None:
                self.finish()
        finally:
            self.close()

    def close(self) -> None:
        """Ends palsim, and the device with it."""
        if self._stderr.closed:
            return
        try:
            self._stdin.close()
        except OSError:
            pass
        self._wait()
        self._reader.join()
        self._stdout.close()
        self._stderr.close()

    def request(self, method: str, **parameters: Any) -> Any:
        """Sends any request of docs/test-bench.md and gives its result."""
        if self._stderr.closed:
            raise ServerError("the device is closed")
        self._requests += 1
        text = json.dumps({"jsonrpc": "2.0", "id": self._requests, "method": method, "params": parameters})
        try:
            self._stdin.write(text.encode() + b"\n")
            self._stdin.flush()
        except OSError:
            raise self._gone(method) from None
        answer = self._answer(method)
        if "error" in answer:
            raise RequestError(answer["error"]["code"], answer["error"]["message"])
        return answer["result"]

    def start(self, process: str) -> Process:
        """Starts a process; "scanner" is scanner.exe."""
        return Process(self, process)

    def set(self, value: str, data: Value) -> None:
        """Sets a registry value, the wave "volume" or the codec's "gain"."""
        self.request("set", value=value, data=list(data) if isinstance(data, bytes) else data)

    def get(self, value: str) -> Optional[Value]:
        """What it is now; None where the registry does not have it."""
        value_now: Optional[Value] = _value(self.request("get", value=value))
        return value_now

    def expect(self, statement: str) -> None:
        """Expects what docs/scenarios.md has behind the word `expect`."""
        result = self.request("expect", statement=statement)
        if not result["holds"]:
            raise ExpectationFailed(result["message"])

    def play(self, *statements: str) -> None:
        """Plays statements of docs/scenarios.md."""
        _require(self.request("play", statements=statements))

    def advance(self, ms: int) -> int:
        """Lets time pass on the device, and gives its clock."""
        return int(self.request("advance", ms=ms)["time_ms"])

    def journal(self, effect: str = "", start: int = 0) -> List[Entry]:
        """The lines of the journal, of one effect or of all, from a position on."""
        entries = self.request("journal", **{"effect": effect, "from": start})["entries"]
        return [Entry(**entry) for entry in entries]

    def snapshot(self, name: str = "") -> None:
        """Keeps registry, files and hardware as they are. No process may run."""
        self.request("snapshot", name=name)

    def restore(self, name: str = "") -> None:
        """Makes them what they were. Clock and journal go on."""
        self.request("restore", name=name)

    def reset(self) -> None:
        """Begins anew, with the device as it was loaded. Snapshots stay."""
        self.request("reset")

    def finish(self) -> None:
        """Waits for the calls, ends the processes, and fails where one has misused the platform."""
        _require(self.request("finish"))

    def save(self, folder: Union[str, "os.PathLike[str]"]) -> None:
        """Writes the device into a new folder: `palsim FOLDER timeline` shows what happened."""
        self.request("save", folder=os.path.abspath(folder))

    def _answer(self, method: str) -> Dict[str, Any]:
        try:
            line = self._lines.get(timeout=self._timeout)
        except queue.Empty:
            self._server.kill()
            raise self._gone(method, f"has not answered within {self._timeout:g} s") from None
        if not line.endswith(b"\n"):
            raise self._gone(method)
        try:
            answer: Dict[str, Any] = json.loads(line)
        except ValueError:
            self._server.kill()
            raise self._gone(method, f"says what is no answer, {line!r},") from None
        return answer

    def _wait(self) -> int:
        try:
            return self._server.wait(self._timeout)
        except subprocess.TimeoutExpired:
            self._server.kill()
            return self._server.wait()

    def _gone(self, method: str, what: str = "has ended") -> ServerError:
        status = self._wait()
        self._stderr.seek(0)
        said = self._stderr.read().decode(errors="replace").strip()
        self.close()
        return ServerError(f"palsim {what} at '{method}' (exit status {status}){': ' + said if said else ''}")


def _read_lines(stream: IO[bytes], lines: "queue.Queue[bytes]") -> None:
    for line in stream:
        lines.put(line)
    lines.put(b"")


def _value(value: Any) -> Any:
    return bytes(value) if isinstance(value, list) else value


def _outcome(result: Dict[str, Any]) -> Outcome:
    result["out"] = {name: _value(value) for name, value in result["out"].items()}
    return Outcome(**result)


def _require(result: Dict[str, Any]) -> None:
    if not result["holds"]:
        raise ExpectationFailed("\n".join(result["failures"]))
