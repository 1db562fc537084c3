"""Runs every operation on footage and makes one page that shows what came out.

    python3 -m quarry.demo --media media --out demo

Each file in `quarry.demo.sections` uses one operation: these are the examples of how to use the package. Needs Debian's
python3-opencv, python3-jinja2 and python3-matplotlib.
"""
