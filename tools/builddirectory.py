"""The compile, link and test commands of a build directory, for scripts that test changed copies of its
programs."""

import json
import os
import re
import shlex
import signal
import subprocess
import threading

LIBRARIES = ['src/libboardlogic.a', 'src/libbusvalues.a', 'src/libboardmanager.a']
DAEMON = 'src/KyBoardManager'
TREE = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


class Build:
    """A build directory. This class never changes the directory."""

    def __init__(self, directory):
        self.directory = os.path.abspath(directory)
        with open(self.path('compile_commands.json'), encoding='utf-8') as file:
            self.compile_commands = {command['file']: command['command']
                                     for command in json.load(file)}
        listing = json.loads(self.output('ctest', '--show-only=json-v1'))
        self.tests = {test['name']: test for test in listing['tests']}

    def path(self, *names):
        return os.path.join(self.directory, *names)

    def output(self, *command):
        return subprocess.run(command, cwd=self.directory, check=True, text=True,
                              stdout=subprocess.PIPE).stdout

    def run_quietly(self, command):
        return subprocess.run(command, cwd=self.directory, check=False, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode

    def object_of(self, file):
        """Returns the object file of a source of the daemon, relative to the build directory."""
        command = shlex.split(self.compile_commands[os.path.join(TREE, file)])
        return command[command.index('-o') + 1]

    def library_of(self, file):
        """Returns the library of a source of the daemon; None for a source of no library."""
        target = re.search(r'/CMakeFiles/(\w+)\.dir/', self.object_of(file)).group(1)
        library = f'src/lib{target}.a'
        return library if library in LIBRARIES else None

    def compile(self, file, source, compiled, options):
        """Compiles source, a changed copy of the tree's file, with the command for file and with
        additional options. Returns whether it compiles."""
        command = shlex.split(self.compile_commands[os.path.join(TREE, file)])
        while os.path.basename(command[0]) in ('ccache', 'nice'):
            command.pop(0)
        command = [word for word in command if word not in ('-Werror', '-g', '-O2')]
        command[command.index('-o') + 1] = compiled
        command[command.index('-c') + 1] = source
        if '-MF' in command:
            command[command.index('-MF') + 1] = compiled + '.d'
        return self.run_quietly(command + options) == 0

    def link(self, target, program, replaced, options=()):
        """Links a target again, with some of its inputs replaced."""
        line = self.output('ninja', '-t', 'commands', '-s', target).strip()
        command = [replaced.get(word, word)
                   for word in shlex.split(line.removeprefix(': && ').removesuffix(' && :'))]
        command[command.index('-o') + 1] = program
        if self.run_quietly(command + list(options)) != 0:
            raise RuntimeError('cannot link ' + target)

    def holds_library(self, program, objects=None):
        """Returns whether a program contains code of the daemon's libraries; with objects, only code
        of these object files counts."""
        if not os.path.exists(self.path(program)):
            return False
        wanted = set()
        for name in objects or LIBRARIES:
            wanted |= self.defined(name)
        return bool(wanted & self.defined(program))

    def defined(self, binary):
        lines = self.output('nm', '--defined-only', '--extern-only', '--format=posix', binary)
        return {line.split()[0] for line in lines.splitlines()
                if line.split()[1:2] in (['T'], ['D'], ['B'], ['R'])}

    def program_of(self, name):
        """Returns the program of a test, relative to the build directory."""
        return os.path.relpath(self.tests[name]['command'][-1], self.directory)

    def test_command(self, name, programs, program=None):
        """Returns the command that runs a test with the daemon in the directory programs and,
        optionally, with program instead of its own test program."""
        command = list(self.tests[name]['command'])
        if '--' in command:
            command[command.index('--'):command.index('--')] = ['--programs', programs]
        if program:
            command[-1] = program
        return command

    def run_test(self, name, command, deadline):
        """Runs a test until its first failure, at most for deadline seconds. Returns whether it passed,
        and its output."""
        properties = {entry['name']: entry['value']
                      for entry in self.tests[name].get('properties', [])}
        environment = dict(os.environ)
        environment.update(entry.split('=', 1) for entry in properties.get('ENVIRONMENT', []))
        printed = []
        failed = False
        # As with ctest, the test must not inherit ignored signals, for example SIGHUP from nohup.
        command = ['env', '--default-signal', *command]
        with subprocess.Popen(command, cwd=properties.get('WORKING_DIRECTORY', self.directory),
                              env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, start_new_session=True) as process:
            timer = threading.Timer(deadline, end, [process])
            timer.start()
            for line in process.stdout:
                printed.append(line)
                if line.startswith((b'FAIL!', b'QFATAL', b'XPASS', b'SKIP')) and not failed:
                    failed = True
                    threading.Thread(target=end, args=[process], daemon=True).start()
            status = process.wait()
            timer.cancel()
        return status == 0 and not failed, b''.join(printed).decode(errors='replace')


def end(process):
    """Ends a test and its world, including everything that was started in the world."""
    try:
        os.killpg(process.pid, signal.SIGTERM)
        process.wait(5)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
