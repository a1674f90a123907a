#!/usr/bin/env python3
"""Shows that 'palsim explore' finds faults: puts one after the other into a copy of the library.

    tests/mutations/run.py BUILD [NAME...]     BUILD is build/release

Each fault is put into a copy of the sources, the library alone is built, and worlds are played until the property that
is about the fault does not hold, for a minute at most. Before that a library without a fault is explored for as long,
in which nothing may be found. Exit status 0 where each fault was found.
"""
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

MOST_SECONDS = 60
SEEDS_AT_ONCE = 100

# Name, what is wrong then, the property that finds it, file, and for each text that is replaced what stands there
# instead.
MUTATIONS = [
    ('mutex', 'a mutex is not released on one path', 'calls-leave-nothing', 'frame/mutex.h',
     {'''release_pending_(Succeeded(wait_result_) ||
                         after_failed_wait == AfterFailedWait::kTryRelease) {}''':
      'release_pending_(after_failed_wait == AfterFailedWait::kTryRelease) {}'}),
    ('wait', 'a wait is a hundred times as long', 'waits-are-documented', 'frame/mutex.h',
     {'kMutexTimeoutMs = 2000;': 'kMutexTimeoutMs = 200000;'}),
    ('volume', 'a volume is not put back after a sound that cannot be found', 'levels-come-back',
     'feedback/beep_player.cpp',
     {'''  if (flags == kPlayThrough) {
    RestoreGain''':
      '''  if (flags == kPlayThrough && Succeeded(result)) {
    RestoreGain'''}),
    ('terminator', 'a terminator is not counted', 'room-is-kept', 'sysinfo/identity/result_converter.cpp',
     {'if (*length < answer.length) {': 'if (*length + 1 < answer.length) {'}),
    ('compare', 'a compare leaves out the last byte', 'wrong-passwords-are-wrong', 'security/password_hash.cpp',
     {'at < left.size(); ++at': 'at + 1 < left.size(); ++at'}),
    ('unreadable', 'a hash that cannot be read counts as none', 'wrong-passwords-are-wrong',
     'security/password_check.cpp',
     {'if (hash_reading == Reading::kFailed || salt_reading == Reading::kFailed) return false;': ''}),
    ('handle', 'a key stays open where its value is missing', 'calls-leave-nothing', 'frame/registry.cpp',
     {'return error == ERROR_SUCCESS ? operation(key) : error;':
      '''if (error != ERROR_SUCCESS) return error;
  const LONG result = operation(key);
  if (result != ERROR_SUCCESS) static_cast<void>(key.Release());
  return result;'''}),
    ('getter', 'a getter reads the setting beside its own', 'getters-answer-setters', 'power/timeouts.cpp',
     {'return pal::Get(pal::kDeviceOffOnExternalPower, minutes);':
      'return pal::Get(pal::kDeviceOffOnBattery, minutes);'}),
    ('plane', 'a plane gets a byte too many', 'planes-are-whole', 'keypad/shift_plane.cpp',
     {'bytes = offset + kKeyRecordBytes;': 'bytes = offset + kKeyRecordBytes + 1;'}),
    ('original', 'a rewritten record is saved over the original', 'originals-are-kept', 'keypad/ordinary_key.cpp',
     {'if (SignalsEvent(button.event_value_name, *record) && MayBeSaved(plane_name, button)) return;':
      'static_cast<void>(&MayBeSaved);'}),
    ('button', 'a button without a layout counts as supported', 'unsupported-buttons-stay', 'keypad/layout.cpp',
     {'if (Failed(reading.opened)) return false;': 'if (Failed(reading.opened)) return true;'}),
    ('command', 'the character behind a program is overwritten', 'commands-keep-their-rest',
     'security/cab_file_protection.cpp',
     {'std::copy(program.begin(), program.end(), stored.begin());':
      '''std::copy(program.begin(), program.end(), stored.begin());
  if (stored.size() > kProgramLength) stored[kProgramLength] = WCHAR{};'''}),
    ('checksum', 'the checksum of a file that was not imported is stored', 'checksums-follow-imports',
     'configstore/registry_file_import.cpp',
     {'if (result == S_OK) StoreChecksum': 'StoreChecksum'}),
    ('forever', 'a mutex is never released, and waited for without end', 'nobody-waits-for-ever', 'frame/mutex.h',
     {'kMutexTimeoutMs = 2000;': 'kMutexTimeoutMs = 0xFFFFFFFF;',
      'if (std::exchange(release_pending_, false)) PALReleaseMutexIfValid(facility_, mutex_);':
      'release_pending_ = false;'}),
    ('abandoned', 'an abandoned mutex is a failure', 'next-process-works', 'frame/mutex.cpp',
     {'''  return S_OK;
}

HRESULT PALRelease''':
      '''  return wait == WAIT_ABANDONED ? E_FAIL : S_OK;
}

HRESULT PALRelease'''}),
    ('unlisted', 'an invalid mutex has a result of its own', 'answers-are-listed', 'frame/mutex.cpp',
     {'return E_INVALIDARG;': 'return static_cast<HRESULT>(0x8000000A);'}),
    ('error', 'a missing value is answered as a missing path', 'errors-are-of-calls', 'frame/registry.cpp',
     {'return RegQueryValueExW(key.get(), name, nullptr, &stored.type, bytes.data(), &stored.bytes);':
      '''const LONG error = RegQueryValueExW(key.get(), name, nullptr, &stored.type, bytes.data(), &stored.bytes);
  return error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : error;'''}),
    ('delete', 'a number is deleted before it is written', 'values-are-old-or-new', 'frame/registry.cpp',
     {'return WriteBytes(key, name, {bytes, sizeof(number)}, REG_DWORD);':
      '''static_cast<void>(RegDeleteValueW(key.get(), name));
  return WriteBytes(key, name, {bytes, sizeof(number)}, REG_DWORD);'''}),
    ('note', 'a number that cannot be written is noted elsewhere', 'nothing-else-is-stored', 'frame/registry.cpp',
     {'return WriteBytes(key, name, {bytes, sizeof(number)}, REG_DWORD);':
      '''const LONG error = WriteBytes(key, name, {bytes, sizeof(number)}, REG_DWORD);
  if (error != ERROR_SUCCESS) static_cast<void>(WriteBytes(key, TEXT("Failed"), {bytes, sizeof(number)}, REG_DWORD));
  return error;'''}),
    ('flush', 'the registry is not flushed before a restart', 'restarts-lose-nothing',
     'configstore/registry_persistence.cpp',
     {'const LONG error = RegFlushKey(flush.root);':
      'const LONG error = flush.root != nullptr ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;'}),
    ('closed', 'a key is closed twice', 'platform-is-used-rightly', 'frame/registry.cpp',
     {'return error == ERROR_SUCCESS ? operation(key) : error;':
      '''if (error != ERROR_SUCCESS) return error;
  const LONG result = operation(key);
  RegCloseKey(key.get());
  return result;'''}),
]


def copy_sources(project, build):
    """The project's files with a build of their own, and the tools of the given one beside its library."""
    folder = os.path.join(build, 'mutations')
    shutil.rmtree(folder, ignore_errors=True)
    names = subprocess.run(['git', 'ls-files', '-z'], cwd=project, check=True, capture_output=True).stdout
    for name in names.decode().split('\0')[:-1]:
        target = os.path.join(folder, name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        shutil.copy2(os.path.join(project, name), target)
    run(['cmake', '--preset', 'release'], folder)
    tools = os.path.join(folder, 'tools.bin')
    os.makedirs(tools)
    for name in ('palsim', 'libsimdevice.so', 'libpal_program.so'):
        shutil.copy2(os.path.join(build, 'bin', name), tools)
    return folder, tools


def run(command, folder):
    done = subprocess.run(command, cwd=folder, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f'{" ".join(command)}:\n{done.stdout}{done.stderr}')


def build_library(folder, tools):
    run(['cmake', '--build', '--preset', 'release', '--target', 'DVLORQPAL'], folder)
    shutil.copy2(os.path.join(folder, 'build/release/bin/DVLORQPAL.so'), tools)


def explore(tools, first, out):
    """The report of some seeds; without a report nothing was explored, and nothing is shown by it."""
    samples = os.path.join(os.path.dirname(tools), 'devices')
    done = subprocess.run([os.path.join(tools, 'palsim'), 'explore', '--faults', 'often', '--out', out, '--seeds',
                           f'{first}-{first + SEEDS_AT_ONCE - 1}'],
                          capture_output=True, text=True, env=os.environ | {'PALSIM_SAMPLES': samples})
    try:
        with open(os.path.join(out, 'report.json')) as file:
            return json.load(file)
    except FileNotFoundError:
        sys.exit(f'palsim explore, exit status {done.returncode}:\n{done.stderr}')


def find(tools, wanted):
    """The first finding of the wanted property, or of any, and the seconds that it took; None where there is none."""
    start = time.monotonic()
    first = 1
    while time.monotonic() - start < MOST_SECONDS:
        with tempfile.TemporaryDirectory() as out:
            report = explore(tools, first, out)
        for finding in report['findings']:
            if finding['property'] == (wanted or finding['property']):
                return finding, time.monotonic() - start
        first += SEEDS_AT_ONCE
    return None, MOST_SECONDS


def show(name, what, finding, seconds):
    found = f'{finding["property"]} in {seconds:.1f} s: {finding["how"]}' if finding else 'NOTHING FOUND'
    print(f'{name:<11} {what}: {found}', flush=True)


def main():
    build = os.path.abspath(sys.argv[1])
    project = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    folder, tools = copy_sources(project, build)
    build_library(folder, tools)
    finding, seconds = find(tools, None)
    show('-', 'no fault', finding, seconds)
    if finding:
        sys.exit('what is found without a fault says nothing about one')
    missed = 0
    for name, what, wanted, source, replaced in MUTATIONS:
        if len(sys.argv) > 2 and name not in sys.argv[2:]:
            continue
        path = os.path.join(folder, source)
        with open(path) as file:
            text = changed = file.read()
        for old, new in replaced.items():
            if changed.count(old) != 1:
                sys.exit(f'{name}: {source} has other words now')
            changed = changed.replace(old, new)
        with open(path, 'w') as file:
            file.write(changed)
        build_library(folder, tools)
        finding, seconds = find(tools, wanted)
        with open(path, 'w') as file:
            file.write(text)
        show(name, what, finding, seconds)
        missed += finding is None
    print(f'{missed} not found')
    return missed > 0


if __name__ == '__main__':
    sys.exit(main())
