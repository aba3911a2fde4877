#!/usr/bin/env python3
"""The scale benchmark: times build/host/kelmaro on fresh copies of generated shortcut trees against the I/O floor.

For each number of shortcuts and each share that changes, a tree is made once (make_tree), and then, for each
repetition, a fresh copy of it is repaired by the program (every run rewrites what it matches) and another fresh copy
is rewritten by lnk_floor (plain reads and writes of the same files, the same rewrites). The table gives the median
wall time, the time per shortcut, the peak resident memory of the program, and its ratio to the floor. Trees live
under --work (default /tmp/kelmaro-bench) and are deleted at the end unless --keep is given.

    bench/run_scale.py                        # 1,000, 10,000 and 100,000 shortcuts; all and 10% changed
    bench/run_scale.py --counts 1000 --repeat 5
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
TIME = "/usr/bin/time"  # GNU time (Debian: time)


def parse_args():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--build", default=os.path.join(ROOT, "build", "host"), help="host build folder")
    parser.add_argument("--work", default="/tmp/kelmaro-bench", help="where the trees are made (deleted at the end)")
    parser.add_argument("--counts", default="1000,10000,100000", help="numbers of shortcuts, comma-separated")
    parser.add_argument("--changed", default="100,10", help="percentages of shortcuts that change, comma-separated")
    parser.add_argument("--repeat", type=int, default=3, help="runs of each kind per tree; the median is shown")
    parser.add_argument("--folder-size", type=int, default=100, help="shortcuts per folder")
    parser.add_argument("--depth", type=int, default=3, help="levels of folders above the shortcuts")
    parser.add_argument("--upper-case", type=int, default=10,
                        help="percentage of shortcuts whose paths are stored in upper case (found without case)")
    parser.add_argument("--keep", action="store_true", help="keep the generated trees")
    parser.add_argument("--sync", action="store_true",
                        help="time each run until its writes are on disk (sync -f of the tree after it), so that a "
                             "small run whose rewrites still sit in memory when it ends is not favoured")
    parser.add_argument("--no-build", action="store_true", help="do not build the programs first")
    return parser.parse_args()


def machine(work):
    """nproc, CPU model, kernel and the file system of the trees."""
    model = "?"
    with open("/proc/cpuinfo") as f:
        for line in f:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    fs = subprocess.run(["df", "--output=fstype", work], capture_output=True, text=True).stdout.split()[-1]
    return f"nproc {os.cpu_count()}, {model}, Linux {os.uname().release}, trees on {fs} ({work})"


def load():
    with open("/proc/loadavg") as f:
        return float(f.read().split()[0])


def run_timed(command, work, env=None, stdout=subprocess.DEVNULL, sync=None):
    """Runs a command; returns (exit code, wall seconds, user+system seconds, peak RSS in KiB).

    With `sync` (a folder), the command is followed by `sync -f` of that folder's file system inside the timing, and
    the command's exit code is kept.

    The peak comes from GNU time, which execs the command from a small process of its own: the resource usage of a
    child forked from Python would count Python's own pages, as they stand between the fork and the exec."""
    report = os.path.join(work, "time.txt")
    if sync:
        script = 'folder="$1"; shift; "$@"; code=$?; sync -f "$folder"; exit $code'
        command = ["sh", "-c", script, "sh", sync] + command
    start = time.perf_counter()
    child = subprocess.Popen([TIME, "-q", "-f", "%M", "-o", report] + command, env=env, stdout=stdout,
                             stderr=subprocess.PIPE)
    _, status, usage = os.wait4(child.pid, 0)
    wall = time.perf_counter() - start
    code = os.waitstatus_to_exitcode(status)
    err = child.stderr.read().decode(errors="replace")
    child.stderr.close()
    if err:
        sys.stderr.write(err)
    with open(report) as f:
        peak = int(f.read().split()[-1])
    os.remove(report)
    return code, wall, usage.ru_utime + usage.ru_stime, peak


def fresh_copy(tree, work):
    copy = os.path.join(work, "run")
    shutil.rmtree(copy, ignore_errors=True)
    subprocess.run(["cp", "-a", os.path.join(tree, "links"), copy], check=True)
    # The copy's dirty pages are written out now, not during the timed run.
    os.sync()
    return copy


def make_tree(args, work, count, changed):
    tree = os.path.join(work, f"tree-{count}-{changed}")
    shutil.rmtree(tree, ignore_errors=True)
    os.makedirs(tree)
    out = subprocess.run([os.path.join(args.build, "bench", "make_tree"), tree, str(count),
                          "--folder-size", str(args.folder_size), "--depth", str(args.depth),
                          "--changed", str(changed), "--upper-case", str(args.upper_case)],
                         check=True, capture_output=True, text=True).stdout
    facts = dict(item.split("=") for item in out.split())
    return tree, int(facts["changed"])


def measure(args, work, tree, count, expected):
    drives = ";".join(f"{letter}={os.path.join(tree, 'drive_' + letter.lower())}" for letter in "CDE")
    program, floor = [], []
    rss = 0
    for _ in range(args.repeat):
        copy = fresh_copy(tree, work)
        env = dict(os.environ, KELMARO_DRIVES=f"{drives};L={copy}", LC_ALL="C")
        out_path = os.path.join(work, "out.txt")
        with open(out_path, "wb") as out:
            code, wall, cpu, peak = run_timed([os.path.join(args.build, "kelmaro"), "-fdr", "L:\\", "D:\\Apps",
                                               "E:\\Apps"], work, env=env, stdout=out,
                                               sync=copy if args.sync else None)
        with open(out_path, "rb") as out:
            rewritten = out.read().count(b"\n ---> ")
        if code != 1 or rewritten != expected:
            sys.exit(f"kelmaro: exit {code}, {rewritten} shortcuts rewritten, {expected} expected")
        program.append((wall, cpu))
        rss = max(rss, peak)

        copy = fresh_copy(tree, work)
        with open(out_path, "wb") as out:
            code, wall, cpu, _ = run_timed([os.path.join(args.build, "bench", "lnk_floor"), copy, "D:\\Apps"],
                                           work, stdout=out, sync=copy if args.sync else None)
        with open(out_path) as out:
            facts = dict(item.split("=") for item in out.read().split())
        if code != 0 or int(facts["rewritten"]) != expected or int(facts["read"]) != count:
            sys.exit(f"lnk_floor: exit {code}, {facts}, {count} read and {expected} rewritten expected")
        floor.append((wall, cpu))
    shutil.rmtree(os.path.join(work, "run"), ignore_errors=True)
    return program, floor, rss


def main():
    args = parse_args()
    if not args.no_build:
        # What the machine lacks (GNU time among it) is installed first, as for the README's other commands.
        subprocess.run([os.path.join(ROOT, "scripts", "setup"), "bench"], check=True)
        subprocess.run(["cmake", "--preset", "host"], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
        subprocess.run(["cmake", "--build", "--preset", "host", "--target", "kelmaro", "make_tree", "lnk_floor"],
                       cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    if not os.access(TIME, os.X_OK):
        sys.exit(f"{TIME} is missing (Debian: apt-get install time)")
    work = os.path.abspath(args.work)
    os.makedirs(work, exist_ok=True)
    counts = [int(c) for c in args.counts.split(",")]
    shares = [int(c) for c in args.changed.split(",")]
    print(f"{machine(work)}; load at start {load():.2f}")
    print(f"folders of {args.folder_size} shortcuts, {args.depth} levels deep, {args.upper_case}% stored in upper "
          f"case; median of {args.repeat} runs" + ("; each timed until its writes are on disk" if args.sync else ""))
    print()
    print("| shortcuts | changed | kelmaro | per shortcut | floor | per shortcut | kelmaro / floor "
          "| own cost per shortcut | cpu per shortcut | peak RSS | load |")
    print("|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|")
    rows = {}
    try:
        for share in shares:
            for count in counts:
                tree, expected = make_tree(args, work, count, share)
                program, floor, rss = measure(args, work, tree, count, expected)
                wall = statistics.median(w for w, _ in program)
                cpu = statistics.median(c for _, c in program)
                floor_wall = statistics.median(w for w, _ in floor)
                row = {"per": wall / count * 1e6, "floor_per": floor_wall / count * 1e6,
                       "own": (wall - floor_wall) / count * 1e6, "ratio": wall / floor_wall, "rss": rss}
                rows[(share, count)] = row
                print(f"| {count:,} | {share}% | {wall:.2f} s | {row['per']:.0f} us | {floor_wall:.2f} s "
                      f"| {row['floor_per']:.0f} us | {row['ratio']:.2f} | {row['own']:.0f} us "
                      f"| {cpu / count * 1e6:.0f} us | {rss / 1024:.1f} MiB | {load():.2f} |", flush=True)
                if not args.keep:
                    shutil.rmtree(tree, ignore_errors=True)
    finally:
        if not args.keep:
            shutil.rmtree(os.path.join(work, "run"), ignore_errors=True)
            for share in shares:
                for count in counts:
                    shutil.rmtree(os.path.join(work, f"tree-{count}-{share}"), ignore_errors=True)
            try:
                os.remove(os.path.join(work, "out.txt"))
                os.rmdir(work)
            except OSError:
                pass
    print()
    small, large = min(counts), max(counts)
    for share in shares:
        if small == large:
            continue
        a, b = rows[(share, small)], rows[(share, large)]
        print(f"{share}% changed, {large:,} against {small:,}: time per shortcut x{b['per'] / a['per']:.2f} "
              f"(target 1.3 or less), floor's x{b['floor_per'] / a['floor_per']:.2f}, own cost "
              f"x{b['own'] / a['own']:.2f}; peak RSS {a['rss'] / 1024:.1f} -> {b['rss'] / 1024:.1f} MiB")
    if (100, 10000) in rows:
        print(f"all changed, 10,000 shortcuts: kelmaro / floor = {rows[(100, 10000)]['ratio']:.2f} (target 5 or less)")

if __name__ == "__main__":
    main()
