"""How long answers take: the milliseconds within which 95 of 100 are there, asked by wrk over a few connections at a
time. Its own clock starts when a request is sent and ends with the answer, on the machine of the server: that is the
server's time and a few hundredths of a millisecond."""
import re
import subprocess
import tempfile

CONNECTIONS = 4
# Each address of a list in turn; the share of answers that came later than the 95th of 100, and how many were no page.
SCRIPT = """local paths = {%s}
local next = 0
request = function()
  next = next %% #paths + 1
  return wrk.format("GET", paths[next])
end
done = function(summary, latency, requests)
  local errors = summary.errors
  io.write(string.format("p95 %%f bad %%d of %%d\\n", latency:percentile(95) / 1000,
    errors.connect + errors.read + errors.write + errors.status + errors.timeout, summary.requests))
end
"""


def slow_answer(base, paths, seconds=2):
    """Milliseconds within which 95 of 100 answers at four side by side are there; the addresses follow one another."""
    with tempfile.NamedTemporaryFile("w", suffix=".lua") as script:
        script.write(SCRIPT % ", ".join(f'"{path}"' for path in paths))
        script.flush()
        done = subprocess.run(["wrk", "-t1", f"-c{CONNECTIONS}", f"-d{seconds}s", "-s", script.name, base], text=True,
                              check=True, stdout=subprocess.PIPE)
    milliseconds, bad, count = re.search(r"p95 ([\d.]+) bad (\d+) of (\d+)", done.stdout).groups()
    if int(bad) or not int(count):
        raise AssertionError(f"{paths[0]}: {bad} of {count} answers are none\n{done.stdout}")
    return float(milliseconds)
