#!/usr/bin/env python3
"""Shows that 'palsim explore' finds faults: puts one after the other into a copy of the library.

    tests/mutations/run.py BUILD [NAME...]     BUILD is build/release

Each fault is put into a copy of the sources, the library alone is built, and worlds are played until a property does
not hold, for a minute at most. Exit status 0 where each fault was found.
"""
import os
import shutil
import subprocess
import sys
import time

MOST_SECONDS = 60
SEEDS_AT_ONCE = 100

# Name, what is wrong then, file, the text that is replaced, and what stands there instead.
MUTATIONS = [
    ('mutex', 'a mutex is not released on one path', 'frame/mutex.h',
     '''release_pending_(Succeeded(wait_result_) ||
                         after_failed_wait == AfterFailedWait::kTryRelease) {}''',
     'release_pending_(after_failed_wait == AfterFailedWait::kTryRelease) {}'),
    ('wait', 'a wait is a hundred times as long', 'frame/mutex.h',
     'kMutexTimeoutMs = 2000;', 'kMutexTimeoutMs = 200000;'),
    ('volume', 'a volume is not put back after a sound that cannot be found', 'feedback/beep_player.cpp',
     '''  if (flags == kPlayThrough) {
    RestoreGain''', '''  if (flags == kPlayThrough && Succeeded(result)) {
    RestoreGain'''),
    ('terminator', 'a terminator is not counted', 'sysinfo/identity/result_converter.cpp',
     'if (*length < answer.length) {', 'if (*length + 1 < answer.length) {'),
    ('compare', 'a compare stops early', 'security/password_hash.cpp',
     'at < left.size(); ++at', 'at < left.size() / 32; ++at'),
    ('unreadable', 'a hash that cannot be read counts as none', 'security/password_check.cpp',
     'if (hash_reading == Reading::kFailed || salt_reading == Reading::kFailed) return false;', ''),
    ('handle', 'a key stays open where its value is missing', 'frame/registry.cpp',
     'return error == ERROR_SUCCESS ? operation(key) : error;',
     '''if (error != ERROR_SUCCESS) return error;
  const LONG result = operation(key);
  if (result != ERROR_SUCCESS) static_cast<void>(key.Release());
  return result;'''),
    ('getter', 'a getter reads the setting beside its own', 'power/timeouts.cpp',
     'return pal::Get(pal::kDeviceOffOnExternalPower, minutes);', 'return pal::Get(pal::kDeviceOffOnBattery, minutes);'),
    ('plane', 'a plane gets a byte too many', 'keypad/shift_plane.cpp',
     'bytes = offset + kKeyRecordBytes;', 'bytes = offset + kKeyRecordBytes + 1;'),
    ('original', 'a rewritten record is saved over the original', 'keypad/ordinary_key.cpp',
     'if (SignalsEvent(button.event_value_name, *record) && MayBeSaved(plane_name, button)) return;',
     'static_cast<void>(&MayBeSaved);'),
    ('button', 'a button without a layout counts as supported', 'keypad/layout.cpp',
     'if (Failed(reading.opened)) return false;', 'if (Failed(reading.opened)) return true;'),
    ('command', 'the character behind a program is overwritten', 'security/cab_file_protection.cpp',
     'std::copy(program.begin(), program.end(), stored.begin());',
     '''std::copy(program.begin(), program.end(), stored.begin());
  if (stored.size() > kProgramLength) stored[kProgramLength] = WCHAR{};'''),
    ('checksum', 'the checksum of a file that was not imported is stored', 'configstore/registry_file_import.cpp',
     'if (result == S_OK) StoreChecksum', 'StoreChecksum'),
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


def find(tools):
    """The first line of what was found, and the seconds that it took; None where nothing was."""
    start = time.monotonic()
    first = 1
    while time.monotonic() - start < MOST_SECONDS:
        done = subprocess.run([os.path.join(tools, 'palsim'), 'explore', '--faults', 'often', '--seeds',
                               f'{first}-{first + SEEDS_AT_ONCE - 1}'], capture_output=True, text=True)
        if done.returncode == 1:
            return (done.stdout or done.stderr).splitlines()[0], time.monotonic() - start
        if done.returncode != 0:
            sys.exit(done.stderr)
        first += SEEDS_AT_ONCE
    return None, MOST_SECONDS


def main():
    build = os.path.abspath(sys.argv[1])
    project = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    folder, tools = copy_sources(project, build)
    missed = 0
    for name, what, source, old, new in MUTATIONS:
        if len(sys.argv) > 2 and name not in sys.argv[2:]:
            continue
        path = os.path.join(folder, source)
        with open(path) as file:
            text = file.read()
        if text.count(old) != 1:
            sys.exit(f'{name}: {source} has other words now')
        with open(path, 'w') as file:
            file.write(text.replace(old, new))
        build_library(folder, tools)
        line, seconds = find(tools)
        with open(path, 'w') as file:
            file.write(text)
        print(f'{name:<11} {what}: ' + (f'found in {seconds:.1f} s: {line}' if line else 'NOT FOUND'), flush=True)
        missed += line is None
    print(f'{missed} not found')
    return missed > 0


if __name__ == '__main__':
    sys.exit(main())
