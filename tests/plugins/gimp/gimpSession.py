"""A GIMP with settings of its own, the built plug-in and nothing of the user's."""
import os
import pathlib
import shutil
import subprocess

# Script-Fu: calls the procedure of an effect. `named` tells arguments by name; of the others texts are empty and
# drawables are none. That all others are named is checked by the types.
CALL = """
(define (zel-argument name type named)
  (let ((told (assoc name named)))
    (cond (told (cadr told))
          ((= type PDB-STRING) "")
          ((= type PDB-DRAWABLE) -1)
          (else (error (string-append "no value for " name))))))
(define (zel-arguments procedure from count named)
  (if (= from count) '()
      (let ((told (gimp-procedural-db-proc-arg procedure from)))
        (cons (zel-argument (cadr told) (car told) named)
              (zel-arguments procedure (+ from 1) count named)))))
(define (zel-call effect image layer named)
  (let* ((procedure (string-append "plug-in-zel-" effect))
         (count (list-ref (gimp-procedural-db-proc-info procedure) 6)))
    (apply (eval (string->symbol procedure))
           (append (list RUN-NONINTERACTIVE image layer) (zel-arguments procedure 3 count named)))))
; Opens the dialog of an effect: what else its procedure takes does not matter then.
(define (zel-nothing procedure from count)
  (if (= from count) '()
      (cons (let ((type (car (gimp-procedural-db-proc-arg procedure from))))
              (cond ((= type PDB-STRING) "") ((= type PDB-DRAWABLE) -1) (else 0)))
            (zel-nothing procedure (+ from 1) count))))
(define (zel-open effect image layer)
  (let ((procedure (string-append "plug-in-zel-" effect)))
    (apply (eval (string->symbol procedure))
           (append (list RUN-INTERACTIVE image layer)
                   (zel-nothing procedure 3 (list-ref (gimp-procedural-db-proc-info procedure) 6))))))
(define (zel-load path) (car (gimp-file-load RUN-NONINTERACTIVE path path)))
(define (zel-layer image path)
  (let ((layer (car (gimp-file-load-layer RUN-NONINTERACTIVE image path))))
    (gimp-image-insert-layer image layer 0 -1) layer))
(define (zel-precision image precision)
  (if (not (= precision (car (gimp-image-get-precision image)))) (gimp-image-convert-precision image precision)))
(define (zel-save image layer path)
  (gimp-file-save RUN-NONINTERACTIVE image layer path path))
"""


def quoted(text):
    return '"' + str(text).replace("\\", "\\\\").replace('"', '\\"') + '"'


class Session:
    def __init__(self, plug_in, work):
        """plug_in: the built program; work: a folder that is made anew."""
        self.work = pathlib.Path(work)
        shutil.rmtree(self.work, ignore_errors=True)
        folder = self.work / "gimp" / "plug-ins"
        folder.mkdir(parents=True)
        (folder / "zel-portrait").symlink_to(pathlib.Path(plug_in).parent)
        # Wherever the tests run from: the last session's files, sockets and locale have no part in them.
        self.environment = {**os.environ, "HOME": str(self.work), "GIMP2_DIRECTORY": str(self.work / "gimp"),
                            "LC_ALL": "C.UTF-8", "NO_AT_BRIDGE": "1"}
        self.environment.pop("DBUS_SESSION_BUS_ADDRESS", None)

    def batch(self, *scripts, timeout=1200):
        """Runs Script-Fu without a window and gives back what was said. A script that fails ends itself alone."""
        command = ["gimp-console-2.10", "-i", "-d", "-f", "-c"]
        for number, script in enumerate(scripts):
            path = self.work / f"batch{number}.scm"
            path.write_text(CALL + script)  # each has an environment of its own
            command += ["-b", f"(load {quoted(path)})"]
        run = subprocess.run([*command, "-b", "(gimp-quit 0)"], env=self.environment, text=True, timeout=timeout,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return run.stdout
