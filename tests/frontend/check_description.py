#!/usr/bin/env python3
"""The default bundle's registration, as a real host triggers it (aaxhost
describe): each step of the description announces itself with the plug-in's
name. The description's content is checked by aaxhost's own describe tests."""
import subprocess
import sys

host, bundle = sys.argv[1], sys.argv[2]
run = subprocess.run([host, "describe", bundle, "--json"], capture_output=True, text=True, check=True)
name = "Tavrion V2"
# The host may route the plug-in's standard output to its own stderr.
missing = [line for line in ("Entry point on our plugin", "AAXWrapper_GetPlugInDescription",
                             "AAXWrapper_DescribeAlgorithmComponent")
           if (" %s %s \n" % (line, name)) not in run.stdout + run.stderr]
for line in missing:
    print("FAIL: registration line", line)
if missing:
    print(run.stdout[:4000])
    sys.exit(1)
print("description OK")
