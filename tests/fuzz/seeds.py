# SPDX-License-Identifier: GPL-3.0-or-later
"""Good files of every kind, small, for the fuzzers to begin with."""

import os
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "soak"))
import small_data  # noqa: E402  pylint: disable=wrong-import-position

SIZE = (4, 3, 2)

TEXTS = {
    "graph": ["0,0.5,1\n0.5,0,0.25\n1,0.25,0\n", "a,b\n0,1\n1,0\n", ",a,b\na,0,1\nb,1,0\n"],
    "matrix": ["a\tb\n1\t0.5\n0.5\t1\n", "Node\ta\tb\na\t1\tn/a\nb\tn/a\t1\n"],
    "series": ["a,b\n1,2\n3,4\n5,6.5\n", "volume\ta\tb\n0\t1\tn/a\n1\t2\t3\n"],
    "labels": ["index\tname\tcolor\n1\tleft\t#ff0000\n2\tright\t#00ff00\n",
               "1 left 255 0 0 0\n2 right 0 255 0 0\n"],
    "events": ["onset\tduration\ttrial_type\n0\t10\ta\n12.5\t0\tb\n20\tn/a\ta\n"],
    "confounds": ["\0framewise_displacement\tdvars\ttrans_x\ttrans_y\ttrans_z\trot_x\trot_y\trot_z\t"
                  "csf\twhite_matter\tglobal_signal\tcosine00\nn/a\tn/a" + "\t0" * 10 + "\n"
                  "0.1\t1.2" + "\t0.1" * 10 + "\n0.2\t1.1" + "\t0.3" * 10 + "\n"],
    "strategy": ["36P", "columns:a,b*", "24P", "columns:cosine*"],
    "censor": ["0\n1\n0\n0\n1\n0\n0\n0\n", "3\n5\n"],
    "spheres": ["x\ty\tz\tradius\tname\n1\t2\t3\t5\tone\n-10.5\t0\t8\t3\ttwo\n"],
    "places": ["name\tx\ty\tz\na\t1\t2\t3\nb\tn/a\tn/a\tn/a\n"],
    "json": ['{"RepetitionTime": 2.0, "a": [1, "x", null, {"b": true}]}'],
    "filter": ['{"bold": {"task": ["rest"], "run": 1, "echo": null, "acquisition": "*"}}'],
    "folder": ["sub-01_task-rest_space-T1w_desc-preproc_bold.nii.gz\n"
               "sub-01_task-rest_desc-confounds_timeseries.tsv\n"
               "sub-01_task-rest_space-T1w_desc-brain_mask.nii.gz\n"
               "sub-01_task-rest_events.tsv\nsub-01_task-rest_bold.json\n"],
    "design": ["group*center(age)\0participant_id\tmatrix\tgroup\tage\n1\ta\tx\t20\n2\tb\tx\t30\n"
               "3\tc\ty\t40\n4\td\ty\t50\n5\te\ty\t60\n"],
    "formula": ["group * center(age) + C(site, ref=B) - 1", "0 + `odd name`:x", "a:b:c + 1"],
    "contrast": ["patients = 0.5*group[a] - age", "f = age; group[a]:age", "m=(Intercept)"],
    "records": ['{"format": "Corvane outputs", "version": 1, "files": [{"file": "kept", "writer":'
                ' "fuzz", "bytes": 4, "time": "2026-01-01T00:00:00.000Z"}]}\0'
                '{"format": "Corvane set of files", "version": 1, "writer": "fuzz",'
                ' "files": ["kept", "../secret"]}'],
    "lock": ['{"format": "Corvane lock", "version": 1, "host": "a.0", "boot": "b", "process": "1",'
             ' "start": "2", "job": "", "restart": 0, "number": "1"}'],
    "manifest": ['{"name": "Tessera", "version": "1.4.2", "target_cv_version": "3.0"}'],
    "names": ["sub-01_ses-a_task-rest_run-1_space-T1w_atlas-Four_dseg.nii.gz", "1e-3", "-12"],
    "study": [],
}


def put_files(program, folder):
    """What the host makes of small inputs, in FOLDER/data and FOLDER/made: the paths."""
    data = folder + "/data"
    made = folder + "/made"
    atlas, labels = small_data.put_atlas(data, SIZE)
    small_data.put_anatomy(data + "/T1w.nii.gz")
    small_data.put_events(data + "/events.tsv")
    small_data.put_run(data + "/bold.nii.gz", 3, SIZE)
    small_data.put_confounds(data + "/confounds.tsv", 3)
    small_data.put(data + "/spheres.tsv", TEXTS["spheres"][0])
    small_data.put_study(data + "/study", 4)
    base = [program, "import", "--functional", data + "/bold.nii.gz", "--atlas", atlas, "--labels",
            labels, "--events", data + "/events.tsv"]
    for words in (base + ["--anatomy", data + "/T1w.nii.gz", "--name", "my", "--out", made],
                  base + ["--confounds", data + "/confounds.tsv", "--clean", "columns:trouble",
                          "--name", "clean", "--out", made],
                  [program, "cohort", data + "/study", made + "/study", "participant", "--atlas",
                   atlas, "--clean", "columns:trouble", "--no-pages"]):
        subprocess.run(words, check=True, stdout=subprocess.DEVNULL)
    return data, made


def put_seeds(program, folder):
    """FOLDER/seeds/READER/... for each reader of fuzz_readers."""
    data, made = put_files(program, folder)
    for reader, texts in TEXTS.items():
        for number, text in enumerate(texts):
            small_data.put("%s/seeds/%s/%d" % (folder, reader, number), text)
    copies = {"nifti": [data + "/tpl_atlas-Four_dseg.nii.gz"],
              "vtc": [], "voi": [made + "/my.voi"], "prt": [made + "/my.prt"], "vmr": []}
    for reader, paths in copies.items():
        for number, path in enumerate(paths):
            with open(path, "rb") as file:
                small_data.put("%s/seeds/%s/file%d" % (folder, reader, number), file.read())
    # Headers of large files; of a time course with the first of its samples.
    for reader, path, most in (("vtc", "/my.vtc", 8192), ("vtc", "/clean.vtc", 8192),
                               ("vmr", "/my.vmr", 4096), ("nifti", None, 0)):
        if path is not None:
            with open(made + path, "rb") as file:
                small_data.put("%s/seeds/%s/%s" % (folder, reader, path[1:]), file.read(most))
    small_data.put_image(folder + "/seeds/nifti/run.nii.gz", [2, 2, 1, 3],
                         [float(n) for n in range(12)])
    with open(made + "/study/participants_connectome.tsv", "rb") as file:
        small_data.put(folder + "/seeds/study/0",
                       file.read() + b"\0participant_id\tage\nsub-01\t20\n")
