#!/usr/bin/env python3
"""Registration as a real host triggers it (aaxhost describe): each step
announces itself with the plug-in's name. The description's content is
checked by aaxhost's own describe tests."""
import subprocess
import sys

run = subprocess.run([sys.argv[1], "describe", sys.argv[2], "--json"], capture_output=True, text=True, check=True)
# The host may route the plug-in's standard output to its own stderr.
missing = [step for step in ("Entry point on our plugin", "AAXWrapper_GetPlugInDescription",
                             "AAXWrapper_DescribeAlgorithmComponent")
           if " %s Tavrion V2 \n" % step not in run.stdout + run.stderr]
if missing:
    sys.exit("missing registration lines: %s\n%s" % (missing, run.stdout[:4000]))
print("description OK")
