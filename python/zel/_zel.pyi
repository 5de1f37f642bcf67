# The package's own way to the library; what is offered stands in __init__.pyi.
from typing import Any

def __getattr__(name: str) -> Any: ...
